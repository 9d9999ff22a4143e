#include <ui/windows/tasktablemodel.h>

#include <controls/theme.h>

#include <base/trace.h>
#include <core/cellidentifiers.h>
#include <core/celltext.h>

#include <QLocale>

#include <utility>

namespace oblino {

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

Qt::Alignment TaskTableModel::alignmentOf(int column)
{
    const bool isDateOrTime = column <= 2 || column == 9;
    return (isDateOrTime ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter;
}

void TaskTableModel::setRows(qsizetype count, TaskAt taskAt)
{
    beginResetModel();
    m_count = static_cast<int>(count);
    m_taskAt = std::move(taskAt);
    m_backgrounds.clear();
    endResetModel();
}

QString TaskTableModel::objectValueFor(int column, int row) const
{
    return cellText(m_taskAt(row), identifiers().at(column), QLocale());
}

QColor TaskTableModel::didAdd(int row) const
{
    auto known = m_backgrounds.constFind(row);
    if (known == m_backgrounds.constEnd()) {
        trace("Row:", row);
        known = m_backgrounds.insert(row, screenColor(m_taskAt(row).color));
    }
    return *known;
}

int TaskTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_count;
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
    case wholeTextRole:
        if (index.column() == descriptionColumn)
            return m_taskAt(index.row()).desc;
        [[fallthrough]];
    case Qt::DisplayRole:
        return objectValueFor(index.column(), index.row());
    default:
        return {};
    }
}

QVariant TaskTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return titles().value(section);
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return QVariant::fromValue(alignmentOf(section));
    return {};
}

} // namespace oblino
