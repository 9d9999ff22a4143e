#pragma once

#include <QStyledItemDelegate>

namespace oblino {

/// Paints a cell of a view on a TaskTableModel: the row's colour over the whole cell, the text in black or
/// white, a line between columns, and marks by which status and priority are read at a glance. A selected row
/// takes the accent colour and keeps its own as a stripe at its left end.
class TaskCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    /// Shows the whole text of a cell that cannot show it.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
};

} // namespace oblino
