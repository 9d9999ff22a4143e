#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QTableView>

class QMenu;

namespace oblino {

/// The table of tasks: a task stays selected until another one is; Shift and Ctrl select several. Home and
/// End go to the first and the last row, typed letters to the next task whose name begins with them. Rows,
/// columns and header follow the font, and the description takes the width that the others leave. Rows may be
/// dragged to another place.
class TaskTable : public QTableView
{
    Q_OBJECT

public:
    explicit TaskTable(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    void keyboardSearch(const QString &text) override;

    /// Has the keyboard go on from a row, if there is one, and shows it; the selection stays.
    void goToRow(int row, ScrollHint hint = EnsureVisible);
    /// Selects a row and no other, whatever keys are held down.
    void selectOnly(int row);
    /// The rows that are selected, rising.
    [[nodiscard]] QList<int> selectedRows() const;
    /// How many that are.
    [[nodiscard]] int selectedCount() const;
    /// The one of them that counts where only one does; -1 where none is selected.
    [[nodiscard]] int mainRow() const;

    /// Says why rows cannot be dragged to another place at this moment; empty where they can.
    void setReorderHint(const QString &reason) { m_whyNotDragged = reason; }

    /// Which columns there are to be seen, where and how wide; see headerState().
    [[nodiscard]] QString columns() const;
    void setColumns(const QString &columns);
    /// The columns as at the first start.
    void resetColumns();
    /// A menu with a mark for each column that is shown.
    void fillColumnMenu(QMenu &menu);

Q_SIGNALS:
    /// Rows were dropped before that row, or behind the last one.
    void rowsDropped(int before);

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex &index, const QEvent *event = nullptr) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void fitToFont();
    void fillWidth();
    [[nodiscard]] QPixmap dragPixmap(const QString &text) const;
    [[nodiscard]] QModelIndex inRow(int row) const;
    [[nodiscard]] int firstTargetOf(int key) const;

    QList<int> m_firstWidths; // of the columns, for the font
    QString m_whyNotDragged;
    QString m_typed;
    QElapsedTimer m_sinceTyped;
};

} // namespace oblino
