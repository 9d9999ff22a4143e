#include <contacts/windows/contactwindow.h>

#include <base/datakind.h>
#include <base/trace.h>
#include <contacts/contactstore.h>
#include <contacts/windows/contactlist.h>
#include <files/earlierversions.h>
#include <ui_contactwindow.h>

#include <QStandardPaths>

#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr auto lockTimeout = 1s; // for another program that has locked the store

QByteArray onOneLine(QString text)
{
    for (const char16_t separator : {u'\t', u'\n', u'\r'})
        text.replace(QChar(separator), QLatin1Char(' '));
    return text.toUtf8();
}

} // namespace

ContactWindow::ContactWindow(Kind kind, const QString &folder, QWidget *parent,
                             std::chrono::milliseconds retryInterval)
    : ToolWindow(parent, {518, 431})
    , m_ui(std::make_unique<Ui::ContactWindow>())
    , m_kind(std::move(kind))
    , m_folder(folder)
    , persistentContainer(std::make_unique<ContactStore>(folder))
    , m_list(new ContactList(this, &m_history))
{
    m_ui->setupUi(this);
    setWindowTitle(m_kind.title);
    m_ui->table->setObjectName(m_kind.tableName);
    m_ui->table->setAccessibleName(m_kind.title);
    m_ui->table->setModel(m_list);
    m_list->setObjectName(m_kind.tableName + QLatin1String("Array"));
    m_ui->addButton->setToolTip(tr("Add a %1 at the end of the list").arg(m_kind.singular));
    connectCommands();
    connect(m_list, &ContactList::dataChanged, this, [this](const QModelIndex &cell) {
        if (cell.column() == NameColumn)
            nameChange(m_ui->table);
    });
    m_retry.setInterval(retryInterval);
    connect(&m_retry, &QTimer::timeout, this, &ContactWindow::retry);
}

ContactWindow::~ContactWindow()
{
    blockSignals(true); // whoever listens may be half gone with the windows
    hide();
    // The last chance of edits that could not be saved when the window went away.
    if (managedObjectContext && managedObjectContext->hasChanges())
        (void)managedObjectContext->save(0ms);
}

void ContactWindow::openStore()
{
    const StoreLoading loading = persistentContainer->loadTraced();
    managedObjectContext = persistentContainer->viewContext();
    if (managedObjectContext) {
        ContactModel *contacts = managedObjectContext->objects(m_kind.request);
        m_history.setContacts(*contacts);
        m_list->setSourceModel(contacts);
        m_ui->table->setEmptyMessage(tr("No %1 yet.\nChoose Add to enter the first.").arg(m_kind.plural));
        return;
    }
    m_ui->table->setEmptyMessage(
        tr("The %1 could not be opened, so none are shown here.").arg(m_kind.plural) + QLatin1String("\n\n") +
        loading.error);
    m_ui->addButton->setEnabled(false);
    m_ui->addAction->setEnabled(false);
    m_ui->addButton->setToolTip(tr("The %1 could not be opened.").arg(m_kind.plural));
}

void ContactWindow::viewWillAppear()
{
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

QString ContactWindow::workTitle() const
{
    return tr("The %1").arg(m_kind.plural);
}

bool ContactWindow::isUnsaved() const
{
    return managedObjectContext && (managedObjectContext->hasChanges() || m_ui->table->isEditing());
}

QString ContactWindow::saveNow()
{
    m_ui->table->endEditing();
    QString error = save(lockTimeout);
    if (!error.isEmpty())
        Q_EMIT savingFailed(error);
    return error;
}

QString ContactWindow::save(std::chrono::milliseconds timeout)
{
    if (!managedObjectContext)
        return {};
    const QString error =
        managedObjectContext->hasChanges() ? managedObjectContext->save(timeout) : QString();
    if (error.isEmpty()) {
        finishSaving();
        return {};
    }
    trace("Unable to Save Contacts", error);
    m_problem = tr("%1 could not be saved: %2. What you entered is kept, and saved as soon as possible.")
                    .arg(workTitle(), error);
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

// Nothing is pending any more. A removed contact could only come back as another one on disk.
void ContactWindow::finishSaving()
{
    m_history.clear();
    m_retry.stop();
    if (!std::exchange(m_problem, {}).isEmpty())
        Q_EMIT saved();
    if (m_outlivesClosing)
        deleteLater();
}

QByteArray ContactWindow::unsavedContent() const
{
    const ContactModel &contacts = *persistentContainer->objects(m_kind.request);
    QByteArray lines;
    for (int row = 0; row < contacts.rowCount(); ++row)
        lines += onOneLine(contacts.text(row, NameColumn)) + '\t' +
                 onOneLine(contacts.text(row, PhoneNoColumn)) + '\n';
    return lines;
}

QString ContactWindow::rescue()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return EarlierVersions(m_kind.rescueFile, EarlierVersions::standardFolders(m_folder, documents))
        .rescue(unsavedContent());
}

void ContactWindow::reload(const FetchRequest &request)
{
    if (!managedObjectContext || request.entityName != m_kind.request.entityName)
        return;
    m_ui->table->endEditing();
    if (const QString error = managedObjectContext->load(); !error.isEmpty())
        trace("Unable to Read Contacts", error);
    finishSaving();
}

void ContactWindow::dataErased(DataKind kind)
{
    if (kind == DataKind::Clients)
        reload(Clients::fetchRequest());
    else if (kind == DataKind::TeamMembers)
        reload(TeamMembers::fetchRequest());
}

} // namespace oblino
