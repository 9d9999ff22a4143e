#include <controls/tableheader.h>

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace oblino {

namespace {

constexpr int padding = 8;
constexpr int arrowWidth = 8;
constexpr int arrowHeight = 4;

void paintArrow(QPainter *painter, const QPoint &centre, bool up)
{
    const int tip = up ? -arrowHeight / 2 : arrowHeight / 2;
    painter->drawPolyline(QPolygon({centre + QPoint(-arrowWidth / 2, -tip), centre + QPoint(0, tip),
                                    centre + QPoint(arrowWidth / 2, -tip)}));
}

} // namespace

int tableRowHeight(const QWidget &table)
{
    constexpr int usual = 36;
    return std::max(usual, table.fontMetrics().height() * 2);
}

TableHeader::TableHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
{
    setMouseTracking(true);
    setHighlightSections(false);
    setSectionsClickable(true);
    setSortIndicatorShown(true);
    // Beside the header a table has a button without a text, of its own making.
    if (auto *corner = parent ? parent->findChild<QAbstractButton *>() : nullptr)
        corner->setAccessibleName(tr("Select all"));
}

QSize TableHeader::sizeHint() const
{
    return {QHeaderView::sizeHint().width(), fontMetrics().height() + 2 * padding};
}

void TableHeader::paintSection(QPainter *painter, const QRect &rect, int section) const
{
    painter->save();
    painter->fillRect(rect, palette().color(section == m_hovered ? QPalette::Midlight : QPalette::Window));
    painter->setPen(palette().color(QPalette::Mid));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    if (rect.right() < viewport()->rect().right())
        painter->drawLine(rect.topRight() + QPoint(0, padding), rect.bottomRight() - QPoint(0, padding));

    const bool sorted = sortIndicatorSection() == section;
    QRect titleRect = rect.adjusted(padding, 0, -padding, 0);
    if (sorted)
        titleRect.setRight(titleRect.right() - arrowWidth - padding / 2);
    painter->setPen(palette().color(QPalette::WindowText));
    const auto alignment =
        model()->headerData(section, orientation(), Qt::TextAlignmentRole).value<Qt::Alignment>();
    const QString title = model()->headerData(section, orientation()).toString();
    painter->drawText(titleRect, static_cast<int>(alignment | Qt::TextSingleLine),
                      fontMetrics().elidedText(title, Qt::ElideRight, titleRect.width()));
    if (sorted) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(
            QPen(palette().color(QPalette::Highlight), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        paintArrow(painter, {rect.right() - padding - arrowWidth / 2, rect.center().y()},
                   sortIndicatorOrder() == Qt::AscendingOrder);
    }
    painter->restore();
}

void TableHeader::mouseMoveEvent(QMouseEvent *event)
{
    m_hovered = logicalIndexAt(event->position().toPoint());
    viewport()->update();
    QHeaderView::mouseMoveEvent(event);
}

void TableHeader::leaveEvent(QEvent *event)
{
    m_hovered = -1;
    viewport()->update();
    QHeaderView::leaveEvent(event);
}

} // namespace oblino
