#include <contacts/windows/contactlist.h>

#include <contacts/contactmodel.h>

namespace oblino {

ContactList::ContactList(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    setDynamicSortFilter(false);
}

QModelIndex ContactList::add()
{
    QAbstractItemModel *contacts = sourceModel();
    const int row = contacts ? contacts->rowCount() : 0;
    if (!contacts || !contacts->insertRow(row))
        return {};
    return mapFromSource(contacts->index(row, NameColumn));
}

void ContactList::remove(const QModelIndexList &rows)
{
    QList<QPersistentModelIndex> leaving;
    for (const QModelIndex &index : rows)
        leaving += mapToSource(index);
    for (const QPersistentModelIndex &index : leaving)
        sourceModel()->removeRow(index.row());
}

QVariant ContactList::headerData(int section, Qt::Orientation /*orientation*/, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    return section == NameColumn ? tr("Name") : tr("Phone Number");
}

// Folded before they are compared, as the plain locale's order minds the case.
bool ContactList::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const auto folded = [](const QModelIndex &index) { return index.data().toString().toCaseFolded(); };
    return QString::localeAwareCompare(folded(left), folded(right)) < 0;
}

} // namespace oblino
