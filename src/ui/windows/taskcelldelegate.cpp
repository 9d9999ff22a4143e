#include <ui/windows/taskcelldelegate.h>

#include <controls/theme.h>
#include <ui/windows/tasktablemodel.h>

#include <core/task.h>

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace oblino {

namespace {

constexpr int padding = 8;
constexpr int markSize = 12;
constexpr int halfMark = markSize / 2;
constexpr int stripeWidth = 6;
constexpr int bars = 3;

struct CellColors
{
    QColor row;        // the task's own colour on the screen
    QColor background; // what the cell is filled with
    QColor text;
};

const TaskTableModel &modelOf(const QModelIndex &index)
{
    return *static_cast<const TaskTableModel *>(index.model());
}

CellColors colorsOf(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QColor row = composited(modelOf(index).didAdd(index.row()), option.palette.color(QPalette::Base));
    if (!(option.state & QStyle::State_Selected))
        return {row, row, readableOn(row)};
    const QColor accent = option.palette.color(QPalette::Highlight);
    return {row, accent, readableOn(accent)};
}

bool hasMark(const QModelIndex &index)
{
    switch (index.column()) {
    case TaskTableModel::statusColumn:
    case TaskTableModel::priorityColumn:
    case TaskTableModel::dueColumn: // in every row, or the dates would not line up
        return true;
    case TaskTableModel::nameColumn:
        return modelOf(index).isMarkedHidden(index.row());
    default:
        return false;
    }
}

bool isOfToday(const QModelIndex &index)
{
    const TaskMarks marks = modelOf(index).marks(index.row());
    return (index.column() == TaskTableModel::dateColumn && marks.startsToday) ||
           (index.column() == TaskTableModel::dueColumn && marks.isDueToday);
}

QRect textRect(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    return option.rect.adjusted(padding + (hasMark(index) ? markSize + padding : 0), 0, -padding, 0);
}

// A ring for a task still open, a filled one with a check mark for a closed one, a dot for any other status.
void paintStatus(QPainter *painter, const QRectF &box, const CellColors &colors, qint64 status)
{
    painter->setPen(QPen(colors.text, 1.5));
    painter->setBrush(status == ClosedStatus ? QBrush(colors.text) : Qt::NoBrush);
    if (status == OpenStatus || status == ClosedStatus)
        painter->drawEllipse(box.adjusted(1, 1, -1, -1));
    else
        painter->drawEllipse(box.adjusted(4, 4, -4, -4));
    if (status == ClosedStatus) {
        painter->setPen(QPen(colors.background, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPolyline(QPolygonF({box.topLeft() + QPointF(3.4, 6.2), box.topLeft() + QPointF(5.4, 8.2),
                                         box.topLeft() + QPointF(8.8, 4.2)}));
    }
}

// Three rising bars, as many of them filled as the priority is high.
void paintPriority(QPainter *painter, const QRectF &box, const CellColors &colors, qint64 priority)
{
    painter->setPen(Qt::NoPen);
    for (int bar = 0; bar < bars; ++bar) {
        QColor color = colors.text;
        color.setAlphaF(bar <= priority ? 0.9F : 0.22F);
        const double height = box.height() * (bar + 1) / bars;
        painter->setBrush(color);
        painter->drawRect(QRectF(box.left() + bar * 4, box.bottom() - height, 3, height));
    }
}

// A triangle with an exclamation mark, which is told by its shape.
void paintOverdue(QPainter *painter, const QRectF &box, const CellColors &colors)
{
    painter->setPen(QPen(colors.text, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    const QPointF tip(box.center().x(), box.top() + 0.5);
    painter->drawPolygon(QPolygonF({tip, box.bottomRight(), box.bottomLeft()}));
    painter->drawLine(tip + QPointF(0, 4.2), tip + QPointF(0, 7.2));
    painter->drawPoint(tip + QPointF(0, 9.4));
}

// An eye that is struck through.
void paintHidden(QPainter *painter, const QRectF &box, const CellColors &colors)
{
    painter->setPen(QPen(colors.text, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    QPainterPath eye(QPointF(box.left(), box.center().y()));
    eye.quadTo(QPointF(box.center().x(), box.top() - 2), QPointF(box.right(), box.center().y()));
    eye.quadTo(QPointF(box.center().x(), box.bottom() + 2), QPointF(box.left(), box.center().y()));
    painter->drawPath(eye);
    painter->drawEllipse(box.center(), 1.8, 1.8);
    painter->drawLine(box.bottomLeft() + QPointF(1, 0), box.topRight() - QPointF(1, 0));
}

void paintMark(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index,
               const CellColors &colors)
{
    if (!hasMark(index))
        return;
    const task &t = modelOf(index).row(index.row());
    const QRectF box(option.rect.left() + padding, option.rect.center().y() - halfMark + 1, markSize,
                     markSize);
    if (index.column() == TaskTableModel::priorityColumn)
        return paintPriority(painter, box, colors, t.priority);
    painter->setRenderHint(QPainter::Antialiasing);
    if (index.column() == TaskTableModel::statusColumn)
        paintStatus(painter, box, colors, t.status);
    else if (index.column() == TaskTableModel::nameColumn)
        paintHidden(painter, box, colors);
    else if (modelOf(index).marks(index.row()).isOverdue)
        paintOverdue(painter, box, colors);
    painter->setRenderHint(QPainter::Antialiasing, false);
}

QString shownText(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    QString text = modelOf(index).objectValueFor(index.column(), index.row());
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return option.fontMetrics.elidedText(text, Qt::ElideRight, textRect(option, index).width());
}

} // namespace

void TaskCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    // The selection stays legible while a menu has the focus, and on a task of the accent colour itself.
    cell.palette.setCurrentColorGroup(QPalette::Active);
    cell.font.setBold(option.state & QStyle::State_Selected || isOfToday(index));
    cell.fontMetrics = QFontMetrics(cell.font);
    const CellColors colors = colorsOf(cell, index);
    painter->save();
    painter->fillRect(option.rect, colors.background);
    if (index.column() == 0 && colors.row != colors.background)
        painter->fillRect(QRect(option.rect.topLeft(), QSize(stripeWidth, option.rect.height())), colors.row);

    QColor line = colors.text;
    line.setAlphaF(0.16F);
    painter->setPen(line);
    painter->drawLine(option.rect.topRight(), option.rect.bottomRight());

    paintMark(painter, option, index, colors);
    painter->setPen(colors.text);
    painter->setFont(cell.font);
    const Qt::Alignment alignment = TaskTableModel::alignmentOf(index.column());
    painter->drawText(textRect(option, index), static_cast<int>(alignment) | Qt::TextSingleLine,
                      shownText(cell, index));

    if ((option.state & QStyle::State_HasFocus) && !(option.state & QStyle::State_Selected)) {
        painter->setPen(QPen(colors.text, 1, Qt::DotLine));
        painter->drawRect(option.rect.adjusted(1, 1, -3, -2));
    }
    painter->restore();
}

bool TaskCellDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                 const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.font.setBold(view->selectionModel()->isSelected(index) || isOfToday(index)); // as it is painted
    cell.fontMetrics = QFontMetrics(cell.font);
    const QString whole = index.data(TaskTableModel::wholeTextRole).toString();
    constexpr qsizetype enough = 2000; // of a tool tip, in UTF-16 units
    if (whole != shownText(cell, index)) {
        const QString plain = whole.size() > enough ? whole.first(enough) + QChar(u'…') : whole;
        QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(plain, Qt::WhiteSpaceNormal), view);
    } else {
        QToolTip::hideText();
    }
    return true;
}

} // namespace oblino
