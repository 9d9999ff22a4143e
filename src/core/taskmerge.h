#pragma once

#include <core/task.h>

#include <QList>

namespace oblino {

/// What two lists that grew from one have become together.
struct TaskMerge
{
    QList<task> tasks;
    QList<task>
        overruled; ///< tasks of `theirs` that were changed on both sides, and stand in `tasks` as in `ours`
};

/// Merges two lists task by task, by key; tasks of one key are taken in their order. A task that one side has
/// changed, added or removed is taken from that side, and one that both have changed from `ours`. The order
/// is that of `ours`, but that of `theirs` where only they have changed it. Two tasks are the same when their
/// rows in the file are.
/// @param base            the last list that both sides knew
/// @param invertedColors  whether the tasks of all three hold the inverted colours of the dark appearance
[[nodiscard]] TaskMerge mergedTasks(const QList<task> &base, const QList<task> &ours,
                                    const QList<task> &theirs, bool invertedColors);

} // namespace oblino
