#include <core/repetition.h>

#include <base/clock.h>
#include <core/filedays.h>
#include <core/taskkey.h>

#include <algorithm>

namespace oblino {

namespace {

constexpr int daysPerWeek = 7;

bool makesSense(const Repetition &repetition, QDate first)
{
    const FileDays file = fileDays(today());
    return first.isValid() && first >= file.first && first <= file.last && repetition.every >= 1 &&
           repetition.every <= Repetition::mostEvery && repetition.count >= 0 && repetition.dayOfMonth >= 1 &&
           repetition.dayOfMonth <= 31 && repetition.week >= 1 && repetition.week <= Repetition::lastWeek;
}

// How many days a weekday comes after another.
int daysBetween(int weekday, int later)
{
    return (later - weekday + daysPerWeek) % daysPerWeek;
}

QDate weekdayInMonth(const Repetition &repetition, QDate firstOfMonth)
{
    const QDate earliest = firstOfMonth.addDays(daysBetween(firstOfMonth.dayOfWeek(), repetition.weekday));
    const QDate day = earliest.addDays(qint64(daysPerWeek) * (repetition.week - 1));
    return day.month() == firstOfMonth.month() ? day : day.addDays(-daysPerWeek);
}

QDate startOfPeriod(const Repetition &repetition, QDate first, int period)
{
    const int units = period * repetition.every;
    switch (repetition.unit) {
    case RepetitionUnit::Days:
        return first.addDays(units);
    case RepetitionUnit::Weeks:
        return first.addDays(qint64(units) * daysPerWeek -
                             daysBetween(repetition.weekStart, first.dayOfWeek()));
    case RepetitionUnit::MonthsByDay:
    case RepetitionUnit::MonthsByWeekday:
        break;
    }
    return QDate(first.year(), first.month(), 1).addMonths(units);
}

QList<QDate> daysOfPeriod(const Repetition &repetition, QDate start)
{
    switch (repetition.unit) {
    case RepetitionUnit::Days:
        return {start};
    case RepetitionUnit::Weeks: {
        QList<QDate> days;
        for (int i = 0; i < daysPerWeek; ++i) {
            const QDate day = start.addDays(i);
            if (repetition.weekdays.test(static_cast<size_t>(day.dayOfWeek())))
                days += day;
        }
        return days;
    }
    case RepetitionUnit::MonthsByDay:
        return {start.addDays(std::min(repetition.dayOfMonth, start.daysInMonth()) - 1)};
    case RepetitionUnit::MonthsByWeekday:
        return {weekdayInMonth(repetition, start)};
    }
    return {};
}

// Skipped days are among them, so that one more skipped day adds none at the end.
QList<QDate> daysOfRule(const Repetition &repetition, QDate first, qsizetype most, QDate last)
{
    QList<QDate> days;
    if (!makesSense(repetition, first))
        return days;
    for (int period = 0;; ++period) {
        const QDate start = startOfPeriod(repetition, first, period);
        if (start > last)
            return days;
        for (const QDate day : daysOfPeriod(repetition, start)) {
            if (days.size() == most || day > last)
                return days;
            if (day > first)
                days += day;
        }
    }
}

qsizetype mostOf(const Repetition &repetition, qsizetype most)
{
    return repetition.count > 0 ? std::min<qsizetype>(repetition.count, most) : most;
}

QDate lastOf(const Repetition &repetition)
{
    const QDate last = fileDays(today()).last;
    return repetition.until.isValid() ? std::min(repetition.until, last) : last;
}

QDateTime moved(const QDateTime &moment, qint64 days)
{
    const QDateTime local = moment.toLocalTime();
    if (!local.isValid())
        return moment;
    const QDate day = local.date().addDays(days);
    QDateTime start = day.startOfDay();
    if (local == local.date().startOfDay())
        return start;
    const QDateTime same(day, local.time());
    return same.isValid() && same.time() == local.time()
               ? same
               : start.addMSecs(local.time().msecsSinceStartOfDay());
}

} // namespace

Repetition repetitionLike(QDate first, Qt::DayOfWeek weekStart)
{
    Repetition repetition;
    repetition.weekStart = weekStart;
    if (!first.isValid())
        return repetition;
    repetition.weekdays.set(static_cast<size_t>(first.dayOfWeek()));
    repetition.dayOfMonth = first.day();
    repetition.weekday = static_cast<Qt::DayOfWeek>(first.dayOfWeek());
    repetition.week = (first.day() - 1) / daysPerWeek + 1; // the fifth is the last
    return repetition;
}

QList<QDate> repeatedDays(const Repetition &repetition, QDate first)
{
    QList<QDate> days =
        daysOfRule(repetition, first, mostOf(repetition, mostRepeatedDays), lastOf(repetition));
    days.removeIf([&](QDate day) { return repetition.skipped.contains(day); });
    return days;
}

RepetitionEnd repetitionEnd(const Repetition &repetition, QDate first)
{
    if (!makesSense(repetition, first))
        return RepetitionEnd::NoSense;
    if (repetition.unit == RepetitionUnit::Weeks && daysOfPeriod(repetition, first).isEmpty())
        return RepetitionEnd::NoWeekday;
    const qsizetype wanted = mostOf(repetition, mostRepeatedDays + 1);
    const qsizetype found = daysOfRule(repetition, first, wanted, lastOf(repetition)).size();
    if (found > mostRepeatedDays)
        return RepetitionEnd::Most;
    const QDate last = fileDays(today()).last;
    const bool isCounted = repetition.count > 0 && found == repetition.count;
    const bool endsItself = isCounted || (repetition.until.isValid() && repetition.until <= last);
    return endsItself ? RepetitionEnd::Own : RepetitionEnd::LastDay;
}

task copyOnDay(const task &original, QDate day)
{
    const QDate first = original.date.toLocalTime().date();
    const qint64 days = first.isValid() ? first.daysTo(day) : 0;
    task copy = original;
    copy.key = newUuidText();
    copy.date = first.isValid() ? moved(original.date, days) : day.startOfDay();
    copy.due = original.due.isValid() ? withinFileDays(moved(original.due, days)) : original.due;
    copy.status = OpenStatus;
    copy.statusName = QStringLiteral("Open");
    return copy;
}

} // namespace oblino
