#include <contacts/windows/contactwindow.h>

#include <base/trace.h>
#include <contacts/windows/contacttable.h>
#include <controls/windowsize.h>
#include <files/earlierversions.h>

#include <QHideEvent>
#include <QItemSelectionModel>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 1s; // with another program that has locked the store

QByteArray onOneLine(QString text)
{
    for (const char16_t separator : {u'\t', u'\n', u'\r'})
        text.replace(QChar(separator), QLatin1Char(' '));
    return text.toUtf8();
}

} // namespace

ContactWindow::ContactWindow(const QString &folder, QWidget *parent, std::chrono::milliseconds retryInterval)
    : QDialog(parent)
    , m_folder(folder)
    , m_container(makeContactContainer(folder))
{
    m_retry.setInterval(retryInterval);
    connect(&m_retry, &QTimer::timeout, this, &ContactWindow::retry);
}

ContactWindow::~ContactWindow()
{
    // The last chance of edits that could not be saved when the window went away.
    if (managedObjectContext && managedObjectContext->hasChanges())
        (void)managedObjectContext->save(0ms);
}

// Whoever listens may be half gone with the windows.
void ContactWindow::saveAtEnd()
{
    blockSignals(true);
    hide();
}

void ContactWindow::openStore(const Outlets &outlets, const FetchRequest &request, const Names &names)
{
    m_outlets = outlets;
    m_request = request;
    m_names = names;
    m_removeToolTip = m_outlets.remove->toolTip();
    m_nothingToolTip = tr("No %1 are selected.").arg(names.plural);
    const StoreLoading loading = loadTraced(*m_container);
    managedObjectContext = m_container->viewContext();

    m_outlets.table->setModel(m_outlets.list);
    if (managedObjectContext) {
        m_outlets.list->setSourceModel(managedObjectContext->objects(request.entityName));
        m_outlets.table->setEmptyMessage(tr("No %1 yet.\nChoose Add to enter the first.").arg(names.plural));
    } else {
        showUnopened(loading.error);
    }
    connect(m_outlets.table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ContactWindow::enableRemoving);
    enableRemoving();
}

void ContactWindow::viewWillAppear()
{
    setLeastSize(*this, {518, 431});
    if (std::exchange(m_outlivesClosing, false))
        setAttribute(Qt::WA_DeleteOnClose);
    if (!m_problem.isEmpty())
        (void)saveNow();
}

void ContactWindow::viewWillDisappear()
{
    if (!saveNow().isEmpty() && testAttribute(Qt::WA_DeleteOnClose)) {
        setAttribute(Qt::WA_DeleteOnClose, false);
        m_outlivesClosing = true;
    }
}

bool ContactWindow::isUnsaved() const
{
    return managedObjectContext && (managedObjectContext->hasChanges() || m_outlets.table->isEditing());
}

QString ContactWindow::saveNow()
{
    m_outlets.table->endEditing();
    QString error = save(patience);
    if (!error.isEmpty())
        Q_EMIT savingFailed(error);
    return error;
}

QString ContactWindow::save(std::chrono::milliseconds lockPatience)
{
    if (!managedObjectContext)
        return {};
    const QString error =
        managedObjectContext->hasChanges() ? managedObjectContext->save(lockPatience) : QString();
    if (error.isEmpty()) {
        settle();
        return {};
    }
    trace("Unable to Save Contacts", error);
    m_problem = tr("%1 could not be saved: %2. What you entered is kept, and saved as soon as possible.")
                    .arg(m_names.title, error);
    m_retry.start();
    return m_problem;
}

// Nobody is told again what they have been told.
void ContactWindow::retry()
{
    const QString before = m_problem;
    if (const QString error = save(0ms); !error.isEmpty() && error != before)
        Q_EMIT savingFailed(error);
}

// Nothing is pending any more.
void ContactWindow::settle()
{
    m_retry.stop();
    if (!std::exchange(m_problem, {}).isEmpty())
        Q_EMIT saved();
    if (m_outlivesClosing)
        deleteLater();
}

QByteArray ContactWindow::unsavedContent() const
{
    const EntityModel *objects =
        managedObjectContext ? managedObjectContext->objects(m_request.entityName) : nullptr;
    QByteArray lines;
    for (int row = 0; objects && row < objects->rowCount(); ++row) {
        const QStringList values = objects->object(row);
        lines += onOneLine(values.at(NameColumn)) + '\t' + onOneLine(values.at(PhoneNoColumn)) + '\n';
    }
    return lines;
}

QString ContactWindow::rescue()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return EarlierVersions(m_names.file, EarlierVersions::standardFolders(m_folder, documents))
        .rescue(unsavedContent());
}

void ContactWindow::reload(const FetchRequest &request)
{
    if (request.entityName != m_request.entityName)
        return;
    m_outlets.table->endEditing();
    if (!managedObjectContext)
        return;
    managedObjectContext->objects(request.entityName)->clear();
    if (const QString error = managedObjectContext->load(); !error.isEmpty())
        trace("Unable to Read Contacts", error);
    settle();
}

void ContactWindow::addContact()
{
    m_outlets.table->endEditing();
    const QModelIndex name = m_outlets.list->add();
    if (!name.isValid())
        return;
    m_outlets.table->setCurrentIndex(name);
    m_outlets.table->scrollTo(name);
    m_outlets.table->edit(name);
}

void ContactWindow::removeContacts()
{
    m_outlets.table->endEditing();
    const QModelIndexList rows = m_outlets.table->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    int first = rows.first().row();
    for (const QModelIndex &index : rows)
        first = std::min(first, index.row());
    m_outlets.list->remove(rows);
    m_outlets.table->selectRow(std::min(first, m_outlets.list->rowCount() - 1));
    m_outlets.table->setFocus(Qt::OtherFocusReason);
}

void ContactWindow::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        viewWillAppear();
    QDialog::showEvent(event);
}

void ContactWindow::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous()) // else it is only minimised
        viewWillDisappear();
    QDialog::hideEvent(event);
}

void ContactWindow::showUnopened(const QString &error)
{
    const QString words = tr("The %1 could not be opened, so none are shown here.").arg(m_names.plural);
    m_outlets.table->setEmptyMessage(words + QLatin1String("\n\n") + error);
    m_outlets.add->setEnabled(false);
    m_outlets.add->setToolTip(tr("The %1 could not be opened.").arg(m_names.plural));
}

void ContactWindow::enableRemoving()
{
    const bool selected = m_outlets.table->selectionModel()->hasSelection();
    m_outlets.remove->setEnabled(selected);
    m_outlets.remove->setToolTip(selected ? m_removeToolTip : m_nothingToolTip);
}

} // namespace oblino
