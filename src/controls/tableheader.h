#pragma once

#include <QHeaderView>

namespace oblino {

/// The height of the rows of every table, in pixels: 36 for the usual font size, more for a larger one.
[[nodiscard]] int tableRowHeight(const QWidget &table);

/// The header of a table: titles stand where the texts below them stand, and a small arrow points up
/// where the column is sorted ascending, down where it is sorted descending.
class TableHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit TableHeader(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintSection(QPainter *painter, const QRect &rect, int section) const override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    int m_hovered = -1;
};

} // namespace oblino
