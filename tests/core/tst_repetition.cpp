#include <base/clock.h>
#include <core/filedays.h>
#include <core/repetition.h>
#include <support/test.h>

using Cases = Table<QByteArray, Repetition, const char *, RepetitionEnd>;
using Copies = Table<QStringList, const char *>;

namespace {

const QDate monday(2026, 11, 23);

QDate day(const QByteArray &text)
{
    return QDate::fromString(QString::fromLatin1(text), Qt::ISODate);
}

// Whether the rule has a day, asked of that day alone.
bool hasDay(const Repetition &rule, QDate first, QDate day)
{
    const auto week = [&](QDate of) { return (of.toJulianDay() - rule.weekStart + 1) / 7; };
    const int months = (day.year() - first.year()) * 12 + day.month() - first.month();
    const bool isLast = day.addDays(1).day() == 1;
    switch (rule.unit) {
    case RepetitionUnit::Days:
        return first.daysTo(day) % rule.every == 0;
    case RepetitionUnit::Weeks:
        return rule.weekdays.test(size_t(day.dayOfWeek())) && (week(day) - week(first)) % rule.every == 0;
    case RepetitionUnit::MonthsByDay:
        return months % rule.every == 0 &&
               (day.day() == rule.dayOfMonth || (isLast && day.day() < rule.dayOfMonth));
    default:
        return months % rule.every == 0 && day.dayOfWeek() == rule.weekday &&
               (rule.week == 5 ? day.addDays(7).month() != day.month() : (day.day() + 6) / 7 == rule.week);
    }
}

} // namespace

class tst_repetition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheDays_data()
    {
        using enum RepetitionUnit;
        using enum RepetitionEnd;
        const QByteArray on = "2026-11-23";
        const std::bitset<8> onSundayAndMonday = 0b10000010;
        Cases row;
        row("up to a day, itself too", on, {.unit = Days, .every = 7, .until = day("2026-12-07")},
            "2026-11-30 2026-12-07", Own);
        row("up to the task's own day", on, {.unit = Days, .until = monday}, "", Own);
        row("a skipped day is counted", on, {.unit = Days, .count = 2, .skipped = {monday.addDays(1)}},
            "2026-11-25", Own);
        row("Sunday ends a week", "2026-11-29", {.every = 2, .weekdays = onSundayAndMonday, .count = 2},
            "2026-12-07 2026-12-13", Own);
        row("Sunday begins a week", "2026-11-29",
            {.every = 2, .weekdays = onSundayAndMonday, .weekStart = Qt::Sunday, .count = 2},
            "2026-11-30 2026-12-13", Own);
        row("31st where there is none", "2027-12-31", {.unit = MonthsByDay, .dayOfMonth = 31, .count = 2},
            "2028-01-31 2028-02-29", Own);
        row("later in the same month", on, {.unit = MonthsByDay, .dayOfMonth = 30, .count = 1}, "2026-11-30",
            Own);
        row("last Friday, the fourth or fifth", on,
            {.unit = MonthsByWeekday, .weekday = Qt::Friday, .week = 5, .count = 3},
            "2026-11-27 2026-12-25 2027-01-29", Own);
        row("no weekday", on, {}, "", NoWeekday);
        row("after the file's last day", fileDays(today()).last.toString(Qt::ISODate).toLatin1(),
            {.unit = Days}, "", LastDay);
        row("no first day", "", {.unit = Days, .count = 1}, "", NoSense);
        row("every 0 days", on, {.unit = Days, .every = 0}, "", NoSense);
        row("every 1000 months", on, {.unit = MonthsByDay, .every = 1000}, "", NoSense);
        row("-1 times", on, {.unit = Days, .count = -1}, "", NoSense);
    }
    void findsTheDays()
    {
        const auto [first, rule, expected, end] = Cases::cells();
        QStringList days;
        for (const QDate found : repeatedDays(rule, day(first)))
            days += found.toString(Qt::ISODate);
        QCOMPARE(days.join(u' '), QLatin1String(expected));
        QCOMPARE(repetitionEnd(rule, day(first)), end);
    }

    // Against every day that the file can hold, one after the other.
    void findsTheDaysThatAPredicateAdmits()
    {
        QRandomGenerator random(1);
        const QDate last = fileDays(today()).last;
        for (int i = 0; i < 150; ++i) {
            const QDate first = last.addDays(-random.bounded(36000));
            Repetition rule = {.unit = RepetitionUnit(random.bounded(4)),
                               .every = random.bounded(4) ? random.bounded(1, 4) : random.bounded(1, 1000),
                               .weekdays = random.bounded(256U),
                               .weekStart = Qt::DayOfWeek(random.bounded(1, 8)),
                               .dayOfMonth = random.bounded(1, 32),
                               .weekday = Qt::DayOfWeek(random.bounded(1, 8)),
                               .week = random.bounded(1, 6),
                               .until = first.addDays(random.bounded(1, 4000)),
                               .count = random.bounded(500)};
            QList<QDate> expected;
            for (QDate next = first.addDays(1); next <= last && next <= rule.until; next = next.addDays(1)) {
                if (hasDay(rule, first, next))
                    expected += next;
            }
            QCOMPARE(repetitionEnd(rule, first) == RepetitionEnd::Most,
                     expected.size() > 400 && (rule.count == 0 || rule.count > 400));
            expected = expected.first(std::min<qsizetype>(expected.size(), rule.count ? rule.count : 400));
            expected = expected.first(std::min<qsizetype>(expected.size(), 400));
            if (!expected.isEmpty())
                rule.skipped += expected.takeAt(random.bounded(int(expected.size())));
            QVERIFY2(repeatedDays(rule, first) == expected, qPrintable(QString::number(i)));
        }
    }

    void movesBothDates_data()
    {
        Copies row; // a task of 2026-03-01 and -03: zone, time and day, the dates of its copy
        row("no midnight", {u"America/Havana"_s, u"00:00"_s, u"2026-03-08"_s},
            "2026-03-08 01:00 2026-03-10 00:00");
        row("due without midnight", {u"America/Havana"_s, u"00:00"_s, u"2026-03-06"_s},
            "2026-03-06 00:00 2026-03-08 01:00");
        row("a time left out", {u"Europe/Berlin"_s, u"02:30"_s, u"2026-03-29"_s},
            "2026-03-29 03:30 2026-03-31 02:30");
        row("from summer", {u"Pacific/Auckland"_s, u"00:00"_s, u"2026-04-06"_s},
            "2026-04-06 00:00 2026-04-08 00:00");
        row("backwards", {u"America/Los_Angeles"_s, u"23:59"_s, u"2026-02-27"_s},
            "2026-02-27 23:59 2026-03-01 23:59");
    }
    void movesBothDates()
    {
        const auto [to, expected] = Copies::cells();
        const TimeZone zone(to[0].toLatin1());
        const QTime time = QTime::fromString(to[1], u"HH:mm"_s);
        const task copy = copyOnDay({.date = {{2026, 3, 1}, time}, .due = {{2026, 3, 3}, time}},
                                    QDate::fromString(to[2], Qt::ISODate));
        const QString format = u"yyyy-MM-dd HH:mm"_s;
        QCOMPARE(copy.date.toString(format) + u' ' + copy.due.toString(format), QLatin1String(expected));
    }

    void copiesAllButKeyAndStatus()
    {
        const QDate last = fileDays(today()).last;
        task original = {.key = u"K"_s,
                         .date = last.addDays(-9).startOfDay(),
                         .due = last.startOfDay(), // the file holds no later one
                         .status = 1,
                         .statusName = u"Closed"_s,
                         .hidden = true};
        const task copy = copyOnDay(original, last.addDays(-8));
        QVERIFY(copy.key.size() == 36 && copy.key != copyOnDay(original, last).key);
        original.key = copy.key;
        original.date = last.addDays(-8).startOfDay();
        original.status = 0;
        original.statusName = u"Open"_s;
        QCOMPARE(copy, original);
    }
};

OBLINO_TEST(tst_repetition, QCoreApplication)

#include "tst_repetition.moc"
