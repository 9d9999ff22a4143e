#include <tools/windows/versiontablemodel.h>

#include <QLocale>

#include <algorithm>

namespace oblino {

QString VersionTableModel::timeText(const QDateTime &time)
{
    const QLocale locale;
    QString format = locale.timeFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("ss")))
        format.replace(QLatin1String("mm"), QLatin1String("mm:ss"));
    return locale.toString(time.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
           locale.toString(time.time(), format);
}

void VersionTableModel::show(DataKind kind, const QList<EarlierVersion> &versions)
{
    beginResetModel();
    m_kind = kind;
    m_rows.clear();
    for (const EarlierVersion &version : versions)
        m_rows.append({version, std::nullopt});
    endResetModel();
}

int VersionTableModel::rowOf(const QString &path) const
{
    const auto found = std::find_if(m_rows.cbegin(), m_rows.cend(),
                                    [&path](const Row &row) { return row.version.path == path; });
    return found == m_rows.cend() ? -1 : static_cast<int>(found - m_rows.cbegin());
}

int VersionTableModel::rowWithoutSummary(int from) const
{
    const auto found = std::find_if(m_rows.cbegin() + std::clamp<qsizetype>(from, 0, m_rows.size()),
                                    m_rows.cend(), [](const Row &row) { return !row.summary; });
    return found == m_rows.cend() ? -1 : static_cast<int>(found - m_rows.cbegin());
}

void VersionTableModel::setSummary(int row, const VersionSummary &summary)
{
    m_rows[row].summary = summary;
    Q_EMIT dataChanged(index(row, AmountColumn), index(row, DifferenceColumn));
}

int VersionTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int VersionTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns;
}

QString VersionTableModel::text(const Row &row, int column)
{
    switch (column) {
    case TimeColumn:
        return timeText(row.version.time);
    case ReasonColumn:
        return reasonText(row.version.reason);
    case AmountColumn:
        return row.summary ? row.summary->amount : tr("…");
    default:
        return row.summary ? row.summary->difference : tr("…");
    }
}

QVariant VersionTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows.at(index.row());
    const bool isDifference = index.column() == DifferenceColumn && row.summary;
    switch (role) {
    case Qt::DisplayRole:
        return text(row, index.column());
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
        return isDifference ? row.summary->words : text(row, index.column());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue((index.column() == AmountColumn ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant VersionTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue((section == AmountColumn ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && section == DifferenceColumn && m_kind == DataKind::Tasks)
        return tr("+ tasks that today’s list has more, − tasks that it has no more, ≠ tasks that it has "
                  "otherwise");
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case TimeColumn:
        return tr("Time");
    case ReasonColumn:
        return tr("Why It Was Kept");
    case AmountColumn:
        return m_kind == DataKind::Tasks ? tr("Tasks") : tr("Size");
    default:
        return tr("Against Today");
    }
}

} // namespace oblino
