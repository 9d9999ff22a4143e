#pragma once

#include <QModelIndexList>
#include <QSortFilterProxyModel>

namespace oblino {

class ContactHistory;

/// The list controller of a contact table: adds, edits and removes contacts as steps of a history, names the
/// columns, and sorts for the eye only. Sorting happens when it is asked for, so that no row moves while one
/// edits it.
class ContactList : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// @param history  none for a list that nobody changes
    explicit ContactList(QObject *parent, ContactHistory *history = nullptr);

    /// Adds an empty contact at the end. @return its name cell, invalid when there is nothing to add to
    QModelIndex add();

    /// Removes the contacts of these rows.
    void remove(const QModelIndexList &rows);

    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

protected:
    [[nodiscard]] bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    ContactHistory *m_history;
};

} // namespace oblino
