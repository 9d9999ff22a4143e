#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace oblino {

enum class DayOrder { Ascending, Same, Descending };

/// Compares two calendar days, and traces "ASCENDING" when the first comes first, "SAME" when they are equal,
/// "DESCENDING" when it comes last.
DayOrder compareDays(QDate first, QDate second);

/// The day of the moment in the short form of the locale.
[[nodiscard]] QString shortDate(const QDateTime &moment, const QLocale &locale = QLocale());

/// The same time of day some days later, or earlier: the start of the day where the moment was one.
[[nodiscard]] QDateTime movedByDays(const QDateTime &moment, qint64 days);

/// The time of day as two two-digit numbers joined by a colon: 9 and 5 give 09:05.
[[nodiscard]] QString twoDigitTime(qint64 hour, qint64 minute);

/// The time of day on a twelve-hour clock: 0 and 5 give 12:05AM, 13 and 7 give 01:07PM. Values outside 0..23
/// and 0..59 are formatted by the same rule.
[[nodiscard]] QString twelveHourTime(qint64 hour, qint64 minute);

/// The same, traced.
[[nodiscard]] QString amPM(qint64 hour, qint64 min);

} // namespace oblino
