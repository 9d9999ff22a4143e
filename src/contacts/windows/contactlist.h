#pragma once

#include <QModelIndexList>
#include <QSortFilterProxyModel>

namespace oblino {

/// The list controller of a contact table: adds and removes contacts, names the columns, and sorts for the
/// eye only. Sorting happens when it is asked for, so that no row moves while one edits it.
class ContactList : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit ContactList(QObject *parent);

    /// Adds an empty contact at the end. @return its name cell, invalid when there is nothing to add to
    QModelIndex add();

    /// Removes the contacts of these rows.
    void remove(const QModelIndexList &rows);

    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

protected:
    [[nodiscard]] bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;
};

} // namespace oblino
