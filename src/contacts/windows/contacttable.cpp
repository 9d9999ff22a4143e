#include <contacts/windows/contacttable.h>

#include <contacts/windows/contactdelegate.h>
#include <controls/tableheader.h>

#include <QContextMenuEvent>
#include <QPainter>
#include <QTextOption>

namespace oblino {

namespace {

constexpr int messageMargin = 24;

} // namespace

ContactTable::ContactTable(QWidget *parent)
    : QTableView(parent)
{
    setItemDelegate(new ContactDelegate(this));
    setHorizontalHeader(new TableHeader(this));
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setTabKeyNavigation(false); // Tab leads out of the table unless a cell is being edited
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setVerticalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setSortIndicatorClearable(true); // the third click brings the stored order back
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    setSortingEnabled(true);
    setRowHeight();
}

void ContactTable::setEmptyMessage(const QString &message)
{
    m_emptyMessage = message;
    announceMessage();
}

void ContactTable::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    connect(model, &QAbstractItemModel::rowsInserted, this, &ContactTable::announceMessage);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &ContactTable::announceMessage);
    connect(model, &QAbstractItemModel::modelReset, this, &ContactTable::announceMessage);
    announceMessage();
}

void ContactTable::endEditing()
{
    if (QWidget *editor = indexWidget(currentIndex())) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

// By the key it opens at the current row, which it is then for, not in the middle of the table.
void ContactTable::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint place = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        if (!selectionModel()->isSelected(currentIndex()))
            selectRow(currentIndex().row());
        scrollTo(currentIndex());
        place = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    }
    Q_EMIT menuRequested(place);
}

void ContactTable::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (!isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    QTextOption option(Qt::AlignCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // for the path of a file
    const QRect area =
        viewport()->rect().adjusted(messageMargin, messageMargin, -messageMargin, -messageMargin);
    painter.drawText(area, m_emptyMessage, option);
}

void ContactTable::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        setRowHeight();
}

// The view would go on to the first cell after the last one.
void ContactTable::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    const QModelIndex at = currentIndex();
    const bool last = at.row() == model()->rowCount() - 1 && at.column() == model()->columnCount() - 1;
    const bool first = at.row() == 0 && at.column() == 0;
    const bool ends = (hint == QAbstractItemDelegate::EditNextItem && last) ||
                      (hint == QAbstractItemDelegate::EditPreviousItem && first);
    QTableView::closeEditor(editor, ends ? QAbstractItemDelegate::NoHint : hint);
}

void ContactTable::setRowHeight()
{
    verticalHeader()->setDefaultSectionSize(tableRowHeight(*this));
}

void ContactTable::announceMessage()
{
    setAccessibleDescription(isEmpty() ? m_emptyMessage : QString());
    viewport()->update();
}

bool ContactTable::isEmpty() const
{
    return !model() || model()->rowCount() == 0;
}

} // namespace oblino
