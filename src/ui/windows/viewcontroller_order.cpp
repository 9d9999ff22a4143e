// The order of the tasks: sorting, and moving by hand.
#include <ui/windows/viewcontroller.h>

#include <ui/uiutil.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/taskundo.h>
#include <ui_viewcontroller.h>

#include <base/clock.h>
#include <base/trace.h>
#include <core/days.h>
#include <core/taskmanager.h>
#include <core/taskordering.h>
#include <core/taskviews.h>

#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>

namespace oblino {

void ViewController::fillSortMenu()
{
    m_ui->viewMenu->addSeparator();
    QMenu *menu = m_ui->viewMenu->addMenu(tr("&Sort By"));
    m_dateAndTime = menu->addAction(tr("Date and &Time"), this, &ViewController::sortByDateAndTime);
    m_dateAndTime->setCheckable(true);
    m_dateAndTime->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    m_dateAndTime->setToolTip(
        tr("The days in their order, and each from morning to evening; kept when tasks are added"));
    menu->setToolTipsVisible(true);
    menu->addSeparator();
    QHeaderView *header = m_ui->tblView->horizontalHeader();
    for (int column = 0; column < m_model.columnCount(); ++column) {
        menu->addAction(TaskTableModel::titles().at(column), this,
                        [header, column] { header->setSortIndicator(column, Qt::AscendingOrder); });
    }
    menu->addSeparator();
    QAction *reverse = menu->addAction(tr("&Reverse Order"), this, &ViewController::reverseOrder);
    reverse->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    m_ui->viewMenu->addMenu(m_columnsMenu);
}

void ViewController::sortDescriptorsDidChange(int section, Qt::SortOrder order)
{
    if (section < 0)
        return;
    SortDescriptor descriptor = m_sortPrototypes.at(section);
    descriptor.ascending = order == Qt::AscendingOrder;
    trace("Sorting:", descriptor);
    sortBy(descriptor);
}

void ViewController::sortBy(const SortDescriptor &order)
{
    m_order = order;
    setKeepsOrder(order.key == dateAndTimeOrder);
    const QString key = keyOfShownSelection();
    m_store.sort(order);
    m_undo->take();
    reload();
    restoreSelection(key);
}

TableLook ViewController::look() const
{
    return {m_ui->tblView->columns(), viewIndex(), m_order.key.value_or(QString()), !m_order.ascending};
}

void ViewController::setLook(const TableLook &look)
{
    m_ui->tblView->setColumns(look.columns);
    const qsizetype column = m_sortPrototypes.indexOf(SortDescriptor{look.order, true});
    if (look.order == dateAndTimeOrder) {
        sortByDateAndTime();
    } else if (column >= 0) {
        m_ui->tblView->horizontalHeader()->setSortIndicator(
            static_cast<int>(column), look.isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
    if (look.view >= 0 && look.view < viewLabels().size())
        m_ui->viewSelection->setCurrentIndex(look.view);
}

void ViewController::sortByDateAndTime()
{
    invalidateSortOrder();
    sortBy({dateAndTimeOrder, true});
}

void ViewController::setKeepsOrder(bool keeps)
{
    m_keepsOrder = keeps;
    m_dateAndTime->setChecked(keeps);
}

// The results of a search are not what is to be in order; the list follows when it ends.
void ViewController::keepOrder()
{
    if (!m_keepsOrder || m_store.isSearching())
        return;
    m_store.sort(m_order);
    m_undo->take(TaskUndo::Sorting::OfTheStepBefore);
}

void ViewController::invalidateSortOrder()
{
    QHeaderView *header = m_ui->tblView->horizontalHeader();
    const QSignalBlocker blocker(header);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->viewport()->update();
}

// An order that was made by hand has no other direction, so that of before is turned round.
void ViewController::reverseOrder()
{
    const qsizetype column = m_sortPrototypes.indexOf(SortDescriptor{m_order.key, true});
    if (column < 0)
        return sortBy({m_order.key, !m_order.ascending});
    m_ui->tblView->horizontalHeader()->setSortIndicator(
        static_cast<int>(column), m_order.ascending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void ViewController::upper()
{
    moveSelected(true, QStringLiteral("Change to Global-All View to order Tasks."));
}

void ViewController::downer()
{
    moveSelected(false, QStringLiteral("Change to the Global-All View to order Tasks."));
}

void ViewController::moveSelected(bool up, const QString &elsewhereMessage)
{
    if (viewIndex() != globalAllView) {
        m_utilities.dialogOK(elsewhereMessage);
        return;
    }
    if (!showsSelection()) {
        m_utilities.dialogOK(QStringLiteral("Select a Task."));
        return;
    }
    const QString key = m_store.getSelectedTask().key;
    if (m_store.swapSelected(up))
        orderByHand();
    reload();
    disableSelectionButtons();
    m_store.setSelected(key);
    if (const int row = rowOfKey(key); row >= 0)
        m_ui->tblView->selectOnly(row);
    showMessage({});
    saveToFile();
}

void ViewController::orderByHand()
{
    invalidateSortOrder();
    setKeepsOrder(false);
}

// Rows that were dragged.
void ViewController::moveRows(int before)
{
    const QString key = keyOfShownSelection();
    const TaskPlaces target = m_store.placesOfRows({before});
    m_store.moveTasks(selectedPlaces(), target.empty() ? m_store.fullList().size() : target.front());
    orderByHand();
    reload();
    disableSelectionButtons();
    restoreSelection(key);
    showMessage({});
    saveToFile();
}

// Why rows cannot be dragged at this moment; empty where they can.
QString ViewController::reorderHint() const
{
    if (viewIndex() != globalAllView)
        return QStringLiteral("Change to the Global-All View to order Tasks.");
    if (m_store.isSearching())
        return tr("End the search to order tasks.");
    return isFiltered() ? tr("Close the filter to order tasks.") : QString();
}

// The first task of today, or of the next day that has one.
int ViewController::rowOfToday() const
{
    const QDate day = today();
    int found = -1;
    QDate best;
    for (int row = 0; row < m_model.rowCount(); ++row) {
        const QDate date = m_model.row(row).date.date();
        if (date >= day && (!best.isValid() || date < best)) {
            found = row;
            best = date;
        }
    }
    return found;
}

void ViewController::goToToday()
{
    const int row = rowOfToday();
    if (row < 0)
        return showMessage(tr("There is no task of today or later in this view."));
    m_ui->tblView->setFocus(Qt::OtherFocusReason);
    m_ui->tblView->goToRow(row, QAbstractItemView::PositionAtTop);
    m_ui->tblView->selectOnly(row);
    const QDate date = m_model.row(row).date.date();
    showMessage(
        date == today()
            ? QString()
            : tr("There is no task of today; the next is on %1.").arg(shortDate(m_model.row(row).date)));
}

} // namespace oblino
