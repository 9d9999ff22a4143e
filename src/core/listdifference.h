#pragma once

#include <core/task.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>

namespace oblino {

/// How today's task list differs from an earlier one. Tasks are paired by their keys, repeated keys in their
/// order; the places of tasks do not count.
struct ListDifference
{
    qsizetype added = 0;   ///< tasks of today's list that the earlier one lacks
    qsizetype removed = 0; ///< tasks of the earlier list that today's lacks
    qsizetype changed = 0; ///< pairs whose rows in the file differ

    bool operator==(const ListDifference &) const = default;
};

/// The short form, as in "+3 −1 ≠2"; what is zero is left out, and "same" stands for three zeros.
[[nodiscard]] QString differenceText(const ListDifference &difference);

/// The same in words, as in "today: 3 tasks more, 1 task fewer, 2 tasks changed".
[[nodiscard]] QString differenceWords(const ListDifference &difference);

/// A task list made ready to be compared, once for any number of comparisons: its tasks' rows as the task
/// list file would hold them.
class ComparedList
{
public:
    ComparedList() = default;
    /// @param invertedColors  whether the tasks hold the inverted colours of the dark appearance
    explicit ComparedList(QList<task> tasks, bool invertedColors = false);

    [[nodiscard]] qsizetype size() const { return m_rows.size(); }

    /// How this list differs from an earlier one, in time linear in the number of their tasks.
    [[nodiscard]] ListDifference since(const ComparedList &earlier) const;

private:
    struct Row
    {
        QByteArrayView text;
        QByteArrayView key;
        qsizetype next = -1; // the next row of the same key
    };

    QByteArray m_text;
    QList<Row> m_rows;
    QHash<QByteArrayView, qsizetype> m_first; // the first row of each key
};

} // namespace oblino
