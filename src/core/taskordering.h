#pragma once

#include <core/sortdescriptor.h>
#include <core/task.h>
#include <core/taskplaces.h>

#include <QList>
#include <QString>

namespace oblino {

/// The key of the order by day, start hour and start minute, as numbers; it is no column's.
inline const QString dateAndTimeOrder = QStringLiteral("DateAndTime");

/// The places of the tasks in the order that the descriptor asks for; as they stand when its key names no
/// column. Equal tasks keep their order in both directions.
///
/// Texts compare by code point, canonically equivalent ones as equal. Times of day compare as texts, hours
/// and minutes without leading zeros: ascending with a colon between them (9:5), descending without (95).
[[nodiscard]] TaskPlaces placesInOrder(const QList<task> &tasks, const SortDescriptor &descriptor);

} // namespace oblino
