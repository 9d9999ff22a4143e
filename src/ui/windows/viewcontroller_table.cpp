// The table of the main window, its selection, and the search.
#include <ui/windows/viewcontroller.h>

#include <controls/emptystate.h>
#include <controls/searchfield.h>
#include <ui/tabletexts.h>
#include <ui/windows/tasktable.h>
#include <ui_viewcontroller.h>

#include <base/clock.h>
#include <base/trace.h>
#include <core/taskmanager.h>

#include <QLabel>
#include <QLocale>
#include <QScrollBar>

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
        keepOrder();
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

void ViewController::tableViewSelectionDidChange()
{
    trace("Selection changed");
    const int row = m_ui->tblView->mainRow();
    trace("Selected Row:", row);
    if (row >= 0) {
        const qint64 index = m_store.setSelected(m_model.row(row).key);
        trace("Index:", index);
        const bool hidden = m_store.getHiddenSelected();
        trace("Hidden:", hidden);
        showHideCommand(hidden);
        showCloseCommand(m_store.getSelectedTask().status == ClosedStatus);
        if (index < 0)
            disableSelectionButtons();
        else
            enableSelectionButtons();
    }
    trace("Row:", row);
    showCounts();
}

void ViewController::reload()
{
    const QModelIndex current = m_ui->tblView->currentIndex();
    const int scrolled = m_ui->tblView->verticalScrollBar()->value();
    applyFilter(numberOfRows());
    const int rows = m_model.rowCount();
    // The keyboard goes on from the row where it was; nothing is selected by that.
    if (rows > 0) {
        const QModelIndex near =
            m_model.index(std::clamp(current.row(), 0, rows - 1), std::max(current.column(), 0));
        m_ui->tblView->selectionModel()->setCurrentIndex(near, QItemSelectionModel::NoUpdate);
        m_ui->tblView->verticalScrollBar()->setValue(scrolled);
    }
    showCounts();
    showDue();
}

// Empty where the user sees no task selected, whatever the store has selected: no command acts then.
QString ViewController::keyOfShownSelection() const
{
    const int row = m_ui->tblView->mainRow();
    if (row < 0 || m_store.getSelectedTaskIndex() < 0)
        return {};
    const QString key = m_model.row(row).key;
    return m_store.getSelectedTask().key == key ? key : QString();
}

void ViewController::restoreSelection(const QString &key)
{
    const int row = key.isEmpty() ? -1 : rowOfKey(key);
    if (row >= 0) {
        m_ui->tblView->selectOnly(row);
        m_ui->tblView->scrollTo(m_model.index(row, m_ui->tblView->currentIndex().column()));
        return;
    }
    if (!key.isEmpty())
        disableSelectionButtons();
    m_ui->tblView->goToRow(0);
}

int ViewController::rowOfKey(const QString &key) const
{
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (m_model.row(row).key == key)
            return row;
    }
    return -1;
}

int ViewController::viewIndex() const
{
    return m_ui->viewSelection->currentIndex();
}

void ViewController::showCounts()
{
    const qsizetype shown = m_model.rowCount();
    const qsizetype all = m_store.fullList().size();
    const QLocale locale;
    const QString noun = all == 1 ? tr("task") : tr("tasks");
    const QString counts = shown == all
                               ? tr("%1 %2").arg(locale.toString(all), noun)
                               : tr("%1 of %2 %3").arg(locale.toString(shown), locale.toString(all), noun);
    const int selected = m_ui->tblView->selectedCount();
    statusMessage->setText(selected > 1 ? tr("%1 selected, %2").arg(locale.toString(selected), counts)
                                        : counts);
    m_emptyState->setVisible(shown == 0);
    if (shown > 0)
        return;
    if (isFiltered() && m_store.countInView() > 0) {
        m_emptyState->setText(
            tr("No task of the view %1 passes the filter").arg(m_ui->viewSelection->currentText()),
            tr("Press Esc in the filter to close it."));
        return;
    }
    const EmptyText text = emptyText({.view = m_ui->viewSelection->currentText(),
                                      .searchTerm = m_store.isSearching() ? m_store.searchTerm() : QString(),
                                      .all = all,
                                      .matches = m_store.tasks().size()});
    m_emptyState->setText(text.title, text.advice);
}

// Once a reload; the marks are of the same day.
void ViewController::showDue()
{
    const QString text = dueText(dueCounts(m_store.fullList(), today()));
    m_due->setText(text);
    m_due->setVisible(!text.isEmpty());
}

} // namespace oblino
