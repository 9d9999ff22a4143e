#include <contacts/windows/contactwindow.h>

#include <contacts/windows/contacttable.h>
#include <platform/trace.h>
#include <platform/widgets/windowsize.h>

#include <QHideEvent>
#include <QItemSelectionModel>
#include <QPushButton>

#include <algorithm>

namespace oblino {

ContactWindow::ContactWindow(const QString &folder, QWidget *parent)
    : QDialog(parent)
    , m_container(makeContactContainer(folder))
{
}

ContactWindow::~ContactWindow() = default;

void ContactWindow::openStore(const Outlets &outlets, const FetchRequest &request, const QString &plural)
{
    m_outlets = outlets;
    m_request = request;
    m_removeToolTip = m_outlets.remove->toolTip();
    m_nothingToolTip = tr("No %1 are selected.").arg(plural);
    const StoreLoading loading = loadTraced(*m_container);
    managedObjectContext = m_container->viewContext();

    m_outlets.table->setModel(m_outlets.list);
    if (managedObjectContext) {
        m_outlets.list->setSourceModel(managedObjectContext->objects(request.entityName));
        m_outlets.table->setEmptyMessage(tr("No %1 yet.\nChoose Add to enter the first.").arg(plural));
    } else {
        showUnopened(loading.error, plural);
    }
    connect(m_outlets.table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ContactWindow::enableRemoving);
    enableRemoving();
}

void ContactWindow::viewWillAppear()
{
    setLeastSize(*this, {518, 431});
}

void ContactWindow::viewWillDisappear()
{
    m_outlets.table->endEditing();
    if (!managedObjectContext)
        return;
    if (const QString error = managedObjectContext->save(); !error.isEmpty())
        trace("Unable to Save Contacts", error);
}

void ContactWindow::reload(const FetchRequest &request)
{
    if (request.entityName != m_request.entityName)
        return;
    m_outlets.table->endEditing();
    if (!managedObjectContext)
        return;
    if (const QString error = managedObjectContext->load(); !error.isEmpty())
        trace("Unable to Read Contacts", error);
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

void ContactWindow::showUnopened(const QString &error, const QString &plural)
{
    const QString words = tr("The %1 could not be opened, so none are shown here.").arg(plural);
    m_outlets.table->setEmptyMessage(words + QLatin1String("\n\n") + error);
    m_outlets.add->setEnabled(false);
    m_outlets.add->setToolTip(tr("The %1 could not be opened.").arg(plural));
}

void ContactWindow::enableRemoving()
{
    const bool selected = m_outlets.table->selectionModel()->hasSelection();
    m_outlets.remove->setEnabled(selected);
    m_outlets.remove->setToolTip(selected ? m_removeToolTip : m_nothingToolTip);
}

} // namespace oblino
