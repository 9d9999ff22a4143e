// The table of the main window, its selection, its sorting and the search.
#include <ui/windows/viewcontroller.h>

#include <controls/emptystate.h>
#include <controls/searchfield.h>
#include <ui/tabletexts.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/taskundo.h>
#include <ui_viewcontroller.h>

#include <base/trace.h>
#include <core/taskmanager.h>

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace oblino {

void ViewController::search()
{
    const QString key = keyOfShownSelection();
    const QString term = m_ui->searchField->text();
    if (!term.isEmpty()) {
        trace(term);
        m_store.setIsSearching(true);
        m_store.setSearchTerm(term);
        trace("Tasks:", [this] { return m_store.tasks(); });
        trace("Backup Tasks:", m_store.backupTasks());
        reinitForSearching();
    } else {
        trace("isEmpty");
        m_store.setIsSearching(false);
    }
    reload();
    restoreSelection(key);
}

void ViewController::endSearch()
{
    m_ui->searchField->clear();
    if (m_store.isSearching())
        search();
}

void ViewController::reinitForSearching()
{
    if (m_store.isSearching())
        m_store.search();
}

qsizetype ViewController::numberOfRows()
{
    trace("Index of Selected:", viewIndex());
    m_store.setFilter(viewIndex());
    trace("Number of Rows:", m_store.countInView());
    return m_store.countInView();
}

void ViewController::sortDescriptorsDidChange(int section, Qt::SortOrder order)
{
    if (section < 0)
        return;
    m_sortColumn = section;
    m_sortOrder = order;
    SortDescriptor descriptor = m_sortPrototypes.at(section);
    descriptor.ascending = order == Qt::AscendingOrder;
    trace("Sorting:", descriptor);
    const QString key = keyOfShownSelection();
    m_store.sort(descriptor);
    m_undo->take();
    reload();
    restoreSelection(key);
}

void ViewController::tableViewSelectionDidChange()
{
    trace("Selection changed");
    const QModelIndexList rows = m_ui->tblView->selectionModel()->selectedRows(TaskTableModel::keyColumn);
    const int row = rows.isEmpty() ? -1 : rows.first().row();
    trace("Selected Row:", row);
    if (row >= 0) {
        const qint64 index = m_store.setSelected(rows.first().data().toString());
        trace("Index:", index);
        const bool hidden = m_store.getHiddenSelected();
        trace("Hidden:", hidden);
        showHideCommand(hidden);
        if (index < 0)
            disableSelectionButtons();
        else
            enableSelectionButtons();
    }
    trace("Row:", row);
}

void ViewController::reload()
{
    const QModelIndex current = m_ui->tblView->currentIndex();
    const int scrolled = m_ui->tblView->verticalScrollBar()->value();
    const auto rows = static_cast<int>(numberOfRows());
    m_model.setRows(rows, [this](int row) -> const task & { return m_store.taskInView(row); });
    // The keyboard goes on from the row where it was; nothing is selected by that.
    if (rows > 0) {
        const QModelIndex near =
            m_model.index(std::clamp(current.row(), 0, rows - 1), std::max(current.column(), 0));
        m_ui->tblView->selectionModel()->setCurrentIndex(near, QItemSelectionModel::NoUpdate);
        m_ui->tblView->verticalScrollBar()->setValue(scrolled);
    }
    showCounts();
}

// Empty where the user sees no task selected, whatever the store has selected: no command acts then.
QString ViewController::keyOfShownSelection() const
{
    const QModelIndexList rows = m_ui->tblView->selectionModel()->selectedRows(TaskTableModel::keyColumn);
    if (rows.isEmpty() || m_store.getSelectedTaskIndex() < 0)
        return {};
    const QString key = rows.first().data().toString();
    return m_store.getSelectedTask().key == key ? key : QString();
}

void ViewController::restoreSelection(const QString &key)
{
    const int row = key.isEmpty() ? -1 : rowOfKey(key);
    if (row >= 0) {
        m_ui->tblView->selectRow(row);
        m_ui->tblView->scrollTo(m_model.index(row, m_ui->tblView->currentIndex().column()));
        return;
    }
    if (!key.isEmpty())
        disableSelectionButtons();
    m_ui->tblView->goToRow(0);
}

int ViewController::rowOfKey(const QString &key) const
{
    const auto rows = static_cast<int>(m_store.countInView());
    for (int row = 0; row < rows; ++row) {
        if (m_store.taskInView(row).key == key)
            return row;
    }
    return -1;
}

int ViewController::viewIndex() const
{
    return m_ui->viewSelection->currentIndex();
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
    m_ui->tblView->horizontalHeader()->setSortIndicator(
        m_sortColumn, m_sortOrder == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void ViewController::showCounts()
{
    const qsizetype shown = m_store.countInView();
    const qsizetype all = m_store.fullList().size();
    const QLocale locale;
    const QString noun = all == 1 ? tr("task") : tr("tasks");
    statusMessage->setText(shown == all
                               ? tr("%1 %2").arg(locale.toString(all), noun)
                               : tr("%1 of %2 %3").arg(locale.toString(shown), locale.toString(all), noun));
    m_emptyState->setVisible(shown == 0);
    if (shown > 0)
        return;
    const EmptyText text = emptyText({.view = m_ui->viewSelection->currentText(),
                                      .searchTerm = m_store.isSearching() ? m_store.searchTerm() : QString(),
                                      .all = all,
                                      .matches = m_store.tasks().size()});
    m_emptyState->setText(text.title, text.advice);
}

} // namespace oblino
