#include <ui/windows/taskcelldelegate.h>

#include <controls/theme.h>
#include <ui/windows/tasktablemodel.h>

#include <core/task.h>

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
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

bool hasMark(int column)
{
    return column == TaskTableModel::statusColumn || column == TaskTableModel::priorityColumn;
}

QRect textRect(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    return option.rect.adjusted(padding + (hasMark(index.column()) ? markSize + padding : 0), 0, -padding, 0);
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

void paintMark(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index,
               const CellColors &colors)
{
    if (!hasMark(index.column()))
        return;
    const task &t = modelOf(index).row(index.row());
    const QRectF box(option.rect.left() + padding, option.rect.center().y() - halfMark + 1, markSize,
                     markSize);
    if (index.column() == TaskTableModel::priorityColumn)
        return paintPriority(painter, box, colors, t.priority);
    painter->setRenderHint(QPainter::Antialiasing);
    paintStatus(painter, box, colors, t.status);
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
    cell.font.setBold(option.state & QStyle::State_Selected);
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
