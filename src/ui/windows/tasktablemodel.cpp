#include <ui/windows/tasktablemodel.h>

#include <core/cellidentifiers.h>

namespace oblino {

namespace {

constexpr int statusColumn = 7;
constexpr int priorityColumn = 8;

bool isCentred(int column)
{
    return column <= 2 || column == 9;
}

} // namespace

TaskTableModel::TaskTableModel(TaskTableSource &source, QObject *parent)
    : QAbstractTableModel(parent)
    , m_source(source)
{
}

const QStringList &TaskTableModel::identifiers()
{
    static const QStringList list = {
        CellIdentifiers::DateCell, CellIdentifiers::StartTime,  CellIdentifiers::EndTime,
        CellIdentifiers::NameCell, CellIdentifiers::ClientCell, CellIdentifiers::TeamMemberCell,
        CellIdentifiers::DescCell, CellIdentifiers::StatusCell, CellIdentifiers::PriorityCell,
        CellIdentifiers::DueCell,  CellIdentifiers::KeyCell};
    return list;
}

const QStringList &TaskTableModel::titles()
{
    static const QStringList list = {
        QStringLiteral("Date"),        QStringLiteral("Start"),  QStringLiteral("End"),
        QStringLiteral("Name"),        QStringLiteral("Client"), QStringLiteral("Team Member"),
        QStringLiteral("Description"), QStringLiteral("Status"), QStringLiteral("Priority"),
        QStringLiteral("Due"),         QStringLiteral("Key")};
    return list;
}

void TaskTableModel::reload()
{
    beginResetModel();
    m_rows = m_source.numberOfRows();
    m_backgrounds.clear();
    endResetModel();
}

int TaskTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int TaskTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(titles().size());
}

QVariant TaskTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return m_source.objectValueFor(index.column(), index.row());
    case Qt::BackgroundRole:
        return backgroundOf(index.row());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue((isCentred(index.column()) ? Qt::AlignHCenter : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
    case WholeTextRole:
        return m_source.wholeTextFor(index.column(), index.row());
    case StatusRole:
        return index.column() == statusColumn ? m_source.markFor(index.column(), index.row()) : QVariant();
    case PriorityRole:
        return index.column() == priorityColumn ? m_source.markFor(index.column(), index.row()) : QVariant();
    default:
        return {};
    }
}

QColor TaskTableModel::backgroundOf(int row) const
{
    auto known = m_backgrounds.constFind(row);
    if (known == m_backgrounds.cend())
        known = m_backgrounds.insert(row, m_source.didAdd(row));
    return *known;
}

QVariant TaskTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return titles().value(section);
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return QVariant::fromValue((isCentred(section) ? Qt::AlignHCenter : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
    return {};
}

} // namespace oblino
