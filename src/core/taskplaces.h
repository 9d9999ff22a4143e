#pragma once

#include <core/task.h>

#include <QList>

#include <vector>

namespace oblino {

/// Indexes into a list of tasks.
using TaskPlaces = std::vector<qsizetype>;

/// The tasks at those places, in that order. Where that is every task in its place, the same list, shared.
[[nodiscard]] QList<task> tasksAt(const QList<task> &tasks, const TaskPlaces &places);

/// The same, for places that name every task once. Tasks of a list that is not shared are moved.
[[nodiscard]] QList<task> rearranged(QList<task> tasks, TaskPlaces places);

} // namespace oblino
