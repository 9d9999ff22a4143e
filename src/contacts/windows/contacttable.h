#pragma once

#include <QTableView>

namespace oblino {

/// A table of contacts, edited in place: Tab goes through the cells of a row and on to the next row. While
/// it is empty it shows a message.
class ContactTable : public QTableView
{
    Q_OBJECT

public:
    explicit ContactTable(QWidget *parent = nullptr);

    /// What to show while there are no rows.
    void setEmptyMessage(const QString &message);

    void setModel(QAbstractItemModel *model) override;

    [[nodiscard]] bool isEditing() const { return indexWidget(currentIndex()) != nullptr; }

    /// Commits and closes the editor that is open, if any.
    void endEditing();

Q_SIGNALS:
    /// The menu of the selected contacts is asked for.
    /// @param place  on the screen
    void menuRequested(const QPoint &place);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    void setRowHeight();
    void announceMessage();
    [[nodiscard]] bool isEmpty() const;

    QString m_emptyMessage;
};

} // namespace oblino
