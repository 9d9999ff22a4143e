#pragma once

#include <QElapsedTimer>
#include <QTableView>

namespace oblino {

/// The table of tasks: one task is selected until another one is. Home and End go to the first and the last
/// row, typed letters to the next task whose name begins with them. Rows, columns and header follow the font.
class TaskTable : public QTableView
{
    Q_OBJECT

public:
    explicit TaskTable(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    void keyboardSearch(const QString &text) override;

    /// Has the keyboard go on from a row, if there is one, and shows it; the selection stays.
    void goToRow(int row);

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex &index, const QEvent *event = nullptr) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fitToFont();
    [[nodiscard]] QModelIndex inRow(int row) const;
    [[nodiscard]] int firstTargetOf(int key) const;

    QList<int> m_firstWidths; // of the columns, for the font
    QString m_typed;
    QElapsedTimer m_sinceTyped;
};

} // namespace oblino
