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
    const bool isDateOrTime = column <= 2 || column == dueColumn;
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

void TaskTableModel::setMarks(QDate today, bool marksHidden)
{
    m_today = today;
    m_marksHidden = marksHidden;
}

// What a screen reader says: the text and, in words, the marks.
QString TaskTableModel::spokenText(int column, int row) const
{
    const QString text = objectValueFor(column, row);
    const TaskMarks marks = this->marks(row);
    if (column == dueColumn && marks.isOverdue)
        return tr("%1, overdue").arg(text);
    if ((column == dueColumn && marks.isDueToday) || (column == dateColumn && marks.startsToday))
        return tr("%1, today").arg(text);
    return column == nameColumn && isMarkedHidden(row) ? tr("%1, hidden").arg(text) : text;
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
    case Qt::AccessibleTextRole:
        return spokenText(index.column(), index.row());
    default:
        return {};
    }
}

Qt::ItemFlags TaskTableModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled
                           : Qt::ItemIsDropEnabled;
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
