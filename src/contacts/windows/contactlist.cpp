#include <contacts/windows/contactlist.h>

#include <contacts/contacthistory.h>

namespace oblino {

ContactList::ContactList(QObject *parent, ContactHistory *history)
    : QSortFilterProxyModel(parent)
    , m_history(history)
{
    setDynamicSortFilter(false);
}

QModelIndex ContactList::add()
{
    if (!m_history || !sourceModel())
        return {};
    m_history->add();
    return mapFromSource(sourceModel()->index(sourceModel()->rowCount() - 1, NameColumn));
}

void ContactList::remove(const QModelIndexList &rows)
{
    QList<int> leaving;
    for (const QModelIndex &index : rows)
        leaving += mapToSource(index).row();
    if (m_history)
        m_history->remove(leaving);
}

bool ContactList::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!m_history || role != Qt::EditRole || !index.isValid())
        return false;
    m_history->setText(mapToSource(index).row(), ContactColumn(index.column()), value.toString());
    return true;
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
