#pragma once

#include <core/task.h>

#include <QDate>
#include <QList>
#include <QSet>

#include <bitset>

namespace oblino {

enum class RepetitionUnit {
    Days,
    Weeks,           ///< on chosen weekdays
    MonthsByDay,     ///< as in "on the 15th"
    MonthsByWeekday, ///< as in "on the second Tuesday"
};

enum class RepetitionEnd {
    Own,      ///< the rule's count or last day
    Most,     ///< there are more days than are made
    LastDay,  ///< the task list file holds no days after it
    NoSense,  ///< numbers outside their ranges, or a first day that the file cannot hold
    NoWeekday ///< of a rule by weeks
};

/// The days on which a task comes again, as a rule. Fields that its unit has no use for mean nothing.
struct Repetition
{
    static constexpr int mostEvery = 999;
    static constexpr int lastWeek = 5; ///< for `week`: the last such weekday of the month

    RepetitionUnit unit = RepetitionUnit::Weeks;
    int every = 1;                        ///< 1..mostEvery units
    std::bitset<8> weekdays = {};         ///< indexed by Qt::DayOfWeek
    Qt::DayOfWeek weekStart = Qt::Monday; ///< where the weeks begin that are counted
    int dayOfMonth = 1;                   ///< 1..31; a month without that day has its last one instead
    Qt::DayOfWeek weekday = Qt::Monday;   ///< of the month
    int week = 1;                         ///< which of those: 1..4 or lastWeek
    QDate until = {};                     ///< the last possible day; none where it is invalid
    int count = 0;                        ///< how many days the rule has, 0 for any number
    QSet<QDate> skipped = {};             ///< are days of the rule, and counted, but left out

    [[nodiscard]] bool operator==(const Repetition &other) const = default;
};

inline constexpr qsizetype mostRepeatedDays = 400;

/// A rule by weeks on the weekday of that day, with the day's places in its month for the other units.
[[nodiscard]] Repetition repetitionLike(QDate first, Qt::DayOfWeek weekStart);

/// The days after `first` on which the rule has the task again, in order. Of the first mostRepeatedDays days
/// of the rule those that are not skipped; none after the last that the task list file can hold, and none
/// where the rule makes no sense.
[[nodiscard]] QList<QDate> repeatedDays(const Repetition &repetition, QDate first);

/// What ends those days.
[[nodiscard]] RepetitionEnd repetitionEnd(const Repetition &repetition, QDate first);

/// An open task with a new key and otherwise the same fields that starts on that day. The due date moves by
/// as many days, up to the last that the task list file can hold. Times of day stay as they are, a start of a
/// day stays one; a time that is left out when the clock is put forward is later by as much.
[[nodiscard]] task copyOnDay(const task &original, QDate day);

} // namespace oblino
