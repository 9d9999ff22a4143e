#include <ui/windows/tasktable.h>

#include <controls/headerstate.h>
#include <controls/tableheader.h>
#include <ui/windows/taskcelldelegate.h>
#include <ui/windows/tasktablemodel.h>

#include <core/foldedtext.h>

#include <QApplication>
#include <QDate>
#include <QDrag>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace oblino {

namespace {

// A width for each column, from texts that are likely to stand in it.
QList<int> firstWidths(QFont font)
{
    font.setBold(true); // as in a selected row
    const QFontMetrics metrics(font);
    const auto wide = [&metrics](const QString &text) { return metrics.horizontalAdvance(text) + 24; };
    int date = 0;
    for (int month = 1; month <= 12; ++month)
        date = std::max(date, wide(QLocale().toString(QDate(2026, month, 28), QLocale::ShortFormat)));
    const int time = wide(QStringLiteral("00:00"));
    const int person = wide(QStringLiteral("Harbor Cafe Ltd"));
    const int mark = wide(QStringLiteral("Medium")) + 28;
    return {date,
            time,
            time,
            wide(QStringLiteral("Paint the fence in the yard")),
            person,
            person,
            wide(QStringLiteral("Two coats, the second when dry")),
            mark,
            mark,
            date + 20, // with a mark
            wide(QStringLiteral("0C5E2A1F-7B3D-4E6A-9F12-3A4B5C6D7E8F"))};
}

bool isOneLetter(const QString &text)
{
    return text.count(text.front()) == text.size();
}

} // namespace

TaskTable::TaskTable(QWidget *parent)
    : QTableView(parent)
{
    setHorizontalHeader(new TableHeader(this));
    horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
    horizontalHeader()->setSectionsMovable(true);
    setItemDelegate(new TaskCellDelegate(this));
    setShowGrid(false); // the delegate draws the vertical lines
    setDragDropMode(InternalMove);
    setDragDropOverwriteMode(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
}

void TaskTable::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    fitToFont();
    setColumnHidden(TaskTableModel::keyColumn, true);
}

// Columns keep what the user has made of their widths.
void TaskTable::fitToFont()
{
    verticalHeader()->setDefaultSectionSize(tableRowHeight(*this));
    QHeaderView *header = horizontalHeader();
    header->setMinimumSectionSize(fontMetrics().horizontalAdvance(QStringLiteral("00:00")));
    const QList<int> widths = firstWidths(font());
    for (int column = 0; column < widths.size(); ++column) {
        const int width = widths.at(column);
        const bool isNew = m_firstWidths.isEmpty() || header->isSectionHidden(column);
        header->resizeSection(column,
                              isNew ? width : header->sectionSize(column) * width / m_firstWidths.at(column));
    }
    m_firstWidths = widths;
    updateGeometries();
}

void TaskTable::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange && model())
        fitToFont();
}

// As long as the columns fill the table exactly, and where they leave some of it free.
void TaskTable::fillWidth()
{
    constexpr int description = TaskTableModel::descriptionColumn;
    QHeaderView *header = horizontalHeader();
    if (isColumnHidden(description) || m_firstWidths.isEmpty())
        return;
    const int others = header->length() - header->sectionSize(description);
    const int least = m_firstWidths.at(description) / 2;
    header->resizeSection(description, std::max(viewport()->width() - others, least));
}

void TaskTable::resizeEvent(QResizeEvent *event)
{
    const int before = event->oldSize().width();
    const bool wasFilled =
        before <= 0 || horizontalHeader()->length() <= std::max(before, viewport()->width());
    if (wasFilled)
        fillWidth();
    QTableView::resizeEvent(event);
}

QString TaskTable::columns() const
{
    return headerState(*horizontalHeader());
}

void TaskTable::setColumns(const QString &columns)
{
    restoreHeader(*horizontalHeader(), columns);
}

void TaskTable::resetColumns()
{
    QHeaderView *header = horizontalHeader();
    for (int column = 0; column < m_firstWidths.size(); ++column) {
        header->moveSection(header->visualIndex(column), column);
        setColumnHidden(column, column == TaskTableModel::keyColumn);
        header->resizeSection(column, m_firstWidths.at(column));
    }
    fillWidth();
}

void TaskTable::fillColumnMenu(QMenu &menu)
{
    menu.clear();
    const int shown = horizontalHeader()->count() - horizontalHeader()->hiddenSectionCount();
    for (int column = 0; column < model()->columnCount(); ++column) {
        QAction *action = menu.addAction(TaskTableModel::titles().at(column));
        action->setCheckable(true);
        action->setChecked(!isColumnHidden(column));
        action->setEnabled(shown > 1 || isColumnHidden(column)); // one stays
        connect(action, &QAction::toggled, this, [this, column](bool isShown) {
            setColumnHidden(column, !isShown);
            if (isShown && columnWidth(column) < horizontalHeader()->minimumSectionSize())
                setColumnWidth(column, m_firstWidths.at(column));
        });
    }
    menu.addSeparator();
    menu.addAction(tr("&Reset Columns"), this, &TaskTable::resetColumns);
}

QModelIndex TaskTable::inRow(int row) const
{
    return model()->index(row, std::max(currentIndex().column(), 0));
}

void TaskTable::goToRow(int row, ScrollHint hint)
{
    if (const QModelIndex index = inRow(row); index.isValid()) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        scrollTo(index, hint);
    }
}

QModelIndex TaskTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    if (action == MoveHome)
        return inRow(0);
    if (action == MoveEnd)
        return inRow(model()->rowCount() - 1);
    return QTableView::moveCursor(action, modifiers);
}

QItemSelectionModel::SelectionFlags TaskTable::selectionCommand(const QModelIndex &index,
                                                                const QEvent *event) const
{
    const QItemSelectionModel::SelectionFlags flags = QTableView::selectionCommand(index, event);
    const bool selects = flags & QItemSelectionModel::Select;
    if ((flags & QItemSelectionModel::Clear) && !selects)
        return QItemSelectionModel::NoUpdate; // beside the rows
    const bool takesAway = flags & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle);
    if (takesAway && selectedCount() == 1 && selectionModel()->isSelected(index))
        return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    return flags;
}

void TaskTable::selectOnly(int row)
{
    selectionModel()->setCurrentIndex(inRow(row),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QList<int> TaskTable::selectedRows() const
{
    QList<int> rows;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

int TaskTable::selectedCount() const
{
    QItemSelection ranges = selectionModel()->selection();
    std::ranges::sort(ranges, {}, &QItemSelectionRange::top);
    int count = 0;
    int last = -1;
    for (const QItemSelectionRange &range : ranges) { // a row stands in several once columns have moved
        count += std::max(range.bottom() - std::max(range.top() - 1, last), 0);
        last = std::max(last, range.bottom());
    }
    return count;
}

int TaskTable::mainRow() const
{
    const QModelIndex current = currentIndex();
    if (current.isValid() && selectionModel()->isSelected(current))
        return current.row();
    const QItemSelection selection = selectionModel()->selection();
    return selection.isEmpty() ? -1 : selection.last().bottom();
}

// A row as wide as the table would hide where it is going.
QPixmap TaskTable::dragPixmap(const QString &text) const
{
    constexpr int padding = 8;
    const QString shown = fontMetrics().elidedText(text, Qt::ElideRight, width() / 3);
    const QSize size(fontMetrics().horizontalAdvance(shown) + 2 * padding, fontMetrics().height() + padding);
    QPixmap pixmap(size * devicePixelRatio());
    pixmap.setDevicePixelRatio(devicePixelRatio());
    pixmap.fill(palette().color(QPalette::Highlight));
    QPainter painter(&pixmap);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, shown);
    return pixmap;
}

void TaskTable::startDrag(Qt::DropActions actions)
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty())
        return;
    auto *drag = new QDrag(this);
    auto *content = new QMimeData; // nothing that another program could take
    content->setData(model()->mimeTypes().value(0), {});
    drag->setMimeData(content);
    drag->setPixmap(dragPixmap(
        rows.size() > 1 ? tr("%1 tasks").arg(QLocale().toString(rows.size()))
                        : model()->index(rows.first(), TaskTableModel::nameColumn).data().toString()));
    drag->setHotSpot({-12, 0});
    drag->exec(actions);
}

void TaskTable::dragMoveEvent(QDragMoveEvent *event)
{
    QTableView::dragMoveEvent(event);
    if (event->source() != this || !m_whyNotDragged.isEmpty()) {
        setDropIndicatorShown(false);
        event->ignore();
        if (!m_whyNotDragged.isEmpty())
            QToolTip::showText(QCursor::pos(), m_whyNotDragged, this);
        return;
    }
    setDropIndicatorShown(true);
    event->accept();
}

void TaskTable::dropEvent(QDropEvent *event)
{
    if (event->source() != this || !m_whyNotDragged.isEmpty())
        return event->ignore();
    const int y = static_cast<int>(event->position().y());
    const int row = rowAt(y);
    const bool isLowerHalf = row >= 0 && y > rowViewportPosition(row) + rowHeight(row) / 2;
    event->setDropAction(Qt::IgnoreAction); // else the view would take the rows away that were dragged
    event->accept();
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
    Q_EMIT rowsDropped(row < 0 ? model()->rowCount() : row + (isLowerHalf ? 1 : 0));
}

// The row that a key takes while none is selected, -1 for any other key: the one where the keyboard is comes
// first.
int TaskTable::firstTargetOf(int key) const
{
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        return currentIndex().row();
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return model()->rowCount() - 1;
    default:
        return -1;
    }
}

void TaskTable::keyPressEvent(QKeyEvent *event)
{
    const int target = selectionModel()->hasSelection() ? -1 : firstTargetOf(event->key());
    if (event->matches(QKeySequence::Copy))
        event->ignore(); // tasks are copied as a whole, by a command
    else if (target >= 0)
        selectOnly(target);
    else
        QTableView::keyPressEvent(event);
}

void TaskTable::keyboardSearch(const QString &text)
{
    const bool isNew =
        !m_sinceTyped.isValid() || m_sinceTyped.elapsed() > QApplication::keyboardInputInterval();
    m_typed = isNew ? text.trimmed() : m_typed + text; // the space bar alone selects
    const int rows = model()->rowCount();
    if (m_typed.isEmpty() || rows == 0)
        return m_sinceTyped.invalidate();
    m_sinceTyped.start();
    const bool isRepeated = isOneLetter(m_typed); // which goes from one to the next
    const QString start = foldedText(isRepeated ? m_typed.first(1) : m_typed);
    const int first = currentIndex().row() + (isRepeated && selectionModel()->hasSelection() ? 1 : 0);
    for (int i = 0; i < rows; ++i) {
        const int row = (std::max(first, 0) + i) % rows;
        const QString name = model()->index(row, TaskTableModel::nameColumn).data().toString();
        if (foldedText(name).startsWith(start))
            return selectOnly(row);
    }
}

} // namespace oblino
