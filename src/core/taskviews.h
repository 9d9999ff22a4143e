#pragma once

#include <core/task.h>
#include <core/taskplaces.h>

#include <QDate>
#include <QList>
#include <QStringList>

namespace oblino {

/// Index of the Global-All view: every task, hidden or not; the only view whose order can be changed by hand.
inline constexpr int globalAllView = 6;

/// The labels of the views, in index order.
[[nodiscard]] QStringList viewLabels();

/// How many times a task stands in a view: 0 to 2. A task that two rules of a view admit is listed twice.
[[nodiscard]] size_t occurrencesInView(const task &t, qint64 itemStatus, QDate day);

/// The places of the tasks of a view, in their order.
/// @param itemStatus  the index of the view
/// @param day         the day on which tasks of view 9 are due
[[nodiscard]] TaskPlaces placesInView(const QList<task> &tasks, qint64 itemStatus, QDate day);
/// The same, of those tasks alone that stand at the given places.
[[nodiscard]] TaskPlaces placesInView(const QList<task> &tasks, const TaskPlaces &among, qint64 itemStatus,
                                      QDate day);

} // namespace oblino
