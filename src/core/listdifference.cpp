#include <core/listdifference.h>

#include <core/tasklistwriter.h>

#include <QStringList>

namespace oblino {

namespace {

constexpr int keyField = 12; // from 0

QByteArrayView keyOf(QByteArrayView row)
{
    for (int field = 0; field < keyField; ++field)
        row = row.sliced(row.indexOf(separatorFieldsFile) + 1);
    return row.first(row.indexOf(separatorFieldsFile));
}

QString taskCount(qsizetype tasks)
{
    return tasks == 1 ? QStringLiteral("1 task") : QStringLiteral("%1 tasks").arg(tasks);
}

} // namespace

QString differenceText(const ListDifference &difference)
{
    QStringList parts;
    const auto add = [&parts](QChar sign, qsizetype tasks) {
        if (tasks > 0)
            parts += sign + QString::number(tasks);
    };
    add(u'+', difference.added);
    add(u'−', difference.removed);
    add(u'≠', difference.changed);
    return parts.isEmpty() ? QStringLiteral("same") : parts.join(QLatin1Char(' '));
}

QString differenceWords(const ListDifference &difference)
{
    QStringList parts;
    const auto add = [&parts](qsizetype tasks, const QString &word) {
        if (tasks > 0)
            parts += taskCount(tasks) + word;
    };
    add(difference.added, QStringLiteral(" more"));
    add(difference.removed, QStringLiteral(" fewer"));
    add(difference.changed, QStringLiteral(" changed"));
    return QStringLiteral("today: ") +
           (parts.isEmpty() ? QStringLiteral("the same") : parts.join(QStringLiteral(", ")));
}

ComparedList::ComparedList(QList<task> tasks, bool invertedColors)
{
    if (invertedColors) {
        for (task &t : tasks)
            t.color = t.color.inverted();
    }
    m_text = taskListText(tasks, false);
    m_rows.reserve(tasks.size());
    for (QByteArrayView rest = m_text; !rest.isEmpty();) {
        const qsizetype end = rest.indexOf(separatorRowsFile);
        m_rows.append({rest.first(end), keyOf(rest)});
        rest = rest.sliced(end + 1);
    }
    m_first.reserve(m_rows.size());
    for (qsizetype row = m_rows.size() - 1; row >= 0; --row) {
        m_rows[row].next = m_first.value(m_rows.at(row).key, -1);
        m_first.insert(m_rows.at(row).key, row);
    }
}

ListDifference ComparedList::since(const ComparedList &earlier) const
{
    ListDifference difference;
    QHash<QByteArrayView, qsizetype> unpaired = m_first;
    qsizetype pairs = 0;
    for (const Row &old : earlier.m_rows) {
        const auto found = unpaired.find(old.key);
        if (found == unpaired.end() || *found < 0) {
            ++difference.removed;
            continue;
        }
        const Row &row = m_rows.at(*found);
        *found = row.next;
        ++pairs;
        if (row.text != old.text)
            ++difference.changed;
    }
    difference.added = size() - pairs;
    return difference;
}

} // namespace oblino
