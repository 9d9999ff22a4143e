#include <tools/windows/versiontablemodel.h>

#include <base/datakind.h>
#include <core/days.h>

#include <QLocale>

#include <algorithm>

namespace oblino {

namespace {

QStandardItem *newItem(const QString &text)
{
    auto *item = new QStandardItem(text);
    item->setEditable(false);
    item->setToolTip(text);
    return item;
}

} // namespace

QString VersionTableModel::timeText(const QDateTime &time)
{
    const QLocale locale;
    QString format = locale.timeFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("ss")))
        format.replace(QLatin1String("mm"), QLatin1String("mm:ss"));
    return shortDate(time, locale) + QLatin1Char(' ') + locale.toString(time.time(), format);
}

void VersionTableModel::show(DataKind kind, const QList<EarlierVersion> &versions)
{
    const bool isList = kind == DataKind::Tasks;
    m_versions = versions;
    setRowCount(0);
    setHorizontalHeaderLabels(
        {tr("Time"), tr("Why It Was Kept"), isList ? tr("Tasks") : tr("Size"), tr("Against Today")});
    for (int column = 0; column < columns; ++column)
        horizontalHeaderItem(column)->setTextAlignment(
            (column == AmountColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (isList)
        horizontalHeaderItem(DifferenceColumn)
            ->setToolTip(tr("+ tasks that today’s list has more, − tasks that it has no more, ≠ tasks that "
                            "it has otherwise"));
    for (const EarlierVersion &version : versions) {
        appendRow({newItem(timeText(version.time)), newItem(reasonText(version.reason)), newItem(tr("…")),
                   newItem(tr("…"))});
        item(rowCount() - 1, AmountColumn)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
}

int VersionTableModel::rowWithoutSummary(int from) const
{
    const QList<QStandardItem *> empty = findItems(tr("…"), Qt::MatchExactly, AmountColumn);
    const auto next = std::find_if(empty.begin(), empty.end(),
                                   [from](const QStandardItem *found) { return found->row() >= from; });
    return empty.isEmpty() ? -1 : next == empty.end() ? empty.first()->row() : (*next)->row();
}

void VersionTableModel::setSummary(int row, const VersionSummary &summary)
{
    item(row, AmountColumn)->setText(summary.amount);
    item(row, AmountColumn)->setToolTip(summary.amount);
    item(row, DifferenceColumn)->setText(summary.difference);
    item(row, DifferenceColumn)->setToolTip(summary.words);
    item(row, DifferenceColumn)->setAccessibleText(summary.words);
}

} // namespace oblino
