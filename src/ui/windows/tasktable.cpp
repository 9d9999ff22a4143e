#include <ui/windows/tasktable.h>

#include <controls/tableheader.h>
#include <ui/windows/taskcelldelegate.h>
#include <ui/windows/tasktablemodel.h>

#include <core/foldedtext.h>

#include <QApplication>
#include <QDate>
#include <QKeyEvent>
#include <QLocale>

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
            date,
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
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
    setItemDelegate(new TaskCellDelegate(this));
    setShowGrid(false); // the delegate draws the vertical lines
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
}

void TaskTable::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    fitToFont();
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
        const bool isNew = m_firstWidths.isEmpty() || column == widths.size() - 1; // the last one stretches
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

QModelIndex TaskTable::inRow(int row) const
{
    return model()->index(row, std::max(currentIndex().column(), 0));
}

void TaskTable::goToRow(int row)
{
    if (const QModelIndex index = inRow(row); index.isValid()) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        scrollTo(index);
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
    return flags & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle)
               ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
               : flags;
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
        setCurrentIndex(inRow(target));
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
            return setCurrentIndex(inRow(row));
    }
}

} // namespace oblino
