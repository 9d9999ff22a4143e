#include <base/clock.h>
#include <core/filedays.h>
#include <core/repetition.h>
#include <support/test.h>

using Cases = Table<QByteArray, Repetition, const char *, RepetitionEnd>;
using Copies = Table<const char *, const char *>;

namespace {

using enum RepetitionUnit;

QDate day(const QByteArray &text)
{
    return QDate::fromString(QLatin1String(text), Qt::ISODate);
}

std::bitset<8> on(std::initializer_list<size_t> weekdays)
{
    std::bitset<8> bits;
    for (const size_t weekday : weekdays)
        bits.set(weekday);
    return bits;
}

// Whether the rule has a day, asked of that day alone.
bool isDayOfRule(const Repetition &rule, QDate first, QDate day)
{
    const auto week = [&](QDate of) { return (of.toJulianDay() - rule.weekStart + 1) / 7; };
    const int months = (day.year() - first.year()) * 12 + day.month() - first.month();
    switch (rule.unit) {
    case Days:
        return first.daysTo(day) % rule.every == 0;
    case Weeks:
        return rule.weekdays.test(size_t(day.dayOfWeek())) && (week(day) - week(first)) % rule.every == 0;
    case MonthsByDay:
        return months % rule.every == 0 &&
               (day.day() == rule.dayOfMonth || (day.addDays(1).day() == 1 && day.day() < rule.dayOfMonth));
    case MonthsByWeekday:
        return months % rule.every == 0 && day.dayOfWeek() == rule.weekday &&
               (rule.week == 5 ? day.addDays(7).month() != day.month() : (day.day() + 6) / 7 == rule.week);
    }
    return false;
}

} // namespace

class tst_repetition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheDays_data()
    {
        const QDate last = fileDays(today()).last;
        const QByteArray lastDay = last.toString(Qt::ISODate).toLatin1();
        const char *monday = "2026-11-23";
        using enum RepetitionEnd;
        Cases row;
        row("every third day", monday, {.unit = Days, .every = 3, .count = 2}, "2026-11-26 2026-11-29", Own);
        row("up to a day, itself too", monday, {.unit = Days, .every = 7, .until = day("2026-12-07")},
            "2026-11-30 2026-12-07", Own);
        row("a skipped day is counted", monday, {.unit = Days, .count = 2, .skipped = {day("2026-11-24")}},
            "2026-11-25", Own);
        row("later in the same week", monday, {.weekdays = on({1, 3}), .count = 2}, "2026-11-25 2026-11-30",
            Own);
        row("Sunday ends a week", "2026-11-29", {.every = 2, .weekdays = on({1, 7}), .count = 2},
            "2026-12-07 2026-12-13", Own);
        row("Sunday begins a week", "2026-11-29",
            {.every = 2, .weekdays = on({1, 7}), .weekStart = Qt::Sunday, .count = 2},
            "2026-11-30 2026-12-13", Own);
        row("no weekday", monday, {}, "", NoWeekday);
        row("31st where there is none", "2027-12-31", {.unit = MonthsByDay, .dayOfMonth = 31, .count = 4},
            "2028-01-31 2028-02-29 2028-03-31 2028-04-30", Own);
        row("later in the same month", monday, {.unit = MonthsByDay, .dayOfMonth = 30, .count = 1},
            "2026-11-30", Own);
        row("second Tuesday", monday,
            {.unit = MonthsByWeekday, .every = 2, .weekday = Qt::Tuesday, .week = 2, .count = 2},
            "2027-01-12 2027-03-09", Own);
        row("last Friday, the fourth or fifth", monday,
            {.unit = MonthsByWeekday, .weekday = Qt::Friday, .week = 5, .count = 3},
            "2026-11-27 2026-12-25 2027-01-29", Own);
        row("up to the day itself", monday, {.unit = Days, .until = day(monday)}, "", Own);
        row("on the last day of the file", lastDay, {.unit = Days}, "", LastDay);
        row("past the file", "2200-01-01", {.unit = Days, .count = 1}, "", NoSense);
        row("no first day", "", {.unit = Days, .count = 1}, "", NoSense);
        row("every 0 days", monday, {.unit = Days, .every = 0}, "", NoSense);
        row("every 1000 months", monday, {.unit = MonthsByDay, .every = 1000}, "", NoSense);
        row("the sixth Monday", monday, {.unit = MonthsByWeekday, .week = 6}, "", NoSense);
        row("the 32nd", monday, {.unit = MonthsByDay, .dayOfMonth = 32}, "", NoSense);
        row("-1 times", monday, {.unit = Days, .count = -1}, "", NoSense);
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
                               .weekdays = std::bitset<8>(random.bounded(256U)),
                               .weekStart = Qt::DayOfWeek(random.bounded(1, 8)),
                               .dayOfMonth = random.bounded(1, 32),
                               .weekday = Qt::DayOfWeek(random.bounded(1, 8)),
                               .week = random.bounded(1, 6)};
            if (random.bounded(2))
                rule.until = first.addDays(random.bounded(3000));
            if (random.bounded(2))
                rule.count = random.bounded(1, 500);
            QList<QDate> expected;
            const qsizetype most = rule.count ? std::min(rule.count, 400) : 400;
            for (QDate next = first.addDays(1); next <= last && expected.size() < most;
                 next = next.addDays(1)) {
                if (isDayOfRule(rule, first, next) && (!rule.until.isValid() || next <= rule.until))
                    expected += next;
            }
            for (int skips = random.bounded(3); skips > 0 && !expected.isEmpty(); --skips)
                rule.skipped += expected.takeAt(random.bounded(int(expected.size())));
            QVERIFY2(repeatedDays(rule, first) == expected, qPrintable(QString::number(i)));
        }
    }

    void saysWhenMoreDaysThanAreMadeFollow()
    {
        const QDate first(2026, 11, 23);
        QCOMPARE(repetitionEnd({.unit = Days, .until = first.addDays(400)}, first), RepetitionEnd::Own);
        QCOMPARE(repetitionEnd({.unit = Days, .until = first.addDays(401)}, first), RepetitionEnd::Most);
        QCOMPARE(repetitionEnd({.unit = Days, .count = 400}, first), RepetitionEnd::Own);
        QCOMPARE(repetitionEnd({.unit = Days, .count = 401}, first), RepetitionEnd::Most);
    }

    void movesBothDates_data()
    {
        Copies row; // a task of 2026-03-01 and -03, in the zone, to a day: its start and due date
        row("no midnight on that day", "America/Havana 00:00 2026-03-08",
            "2026-03-08T01:00 2026-03-10T00:00");
        row("due without midnight", "America/Havana 00:00 2026-03-06", "2026-03-06T00:00 2026-03-08T01:00");
        row("a time that is left out", "Europe/Berlin 02:30 2026-03-29", "2026-03-29T03:30 2026-03-31T02:30");
        row("across the end of summer", "Pacific/Auckland 00:00 2026-04-06",
            "2026-04-06T00:00 2026-04-08T00:00");
        row("two such times", "America/Los_Angeles 01:30 2026-11-01", "2026-11-01T01:30 2026-11-03T01:30");
        row("backwards", "Europe/Berlin 23:59 2026-02-27", "2026-02-27T23:59 2026-03-01T23:59");
    }

    void movesBothDates()
    {
        const auto [from, expected] = Copies::cells();
        const QStringList words = QString::fromLatin1(from).split(u' ');
        const TimeZone zone(words[0].toLatin1());
        const auto at = [&](const QDate &date) {
            return words[1] == u"00:00"_s ? date.startOfDay()
                                          : QDateTime(date, QTime::fromString(words[1], u"HH:mm"_s));
        };
        const task copy =
            copyOnDay({.date = at({2026, 3, 1}), .due = at({2026, 3, 3})}, day(qPrintable(words[2])));
        const QString format = u"yyyy-MM-ddTHH:mm"_s;
        QCOMPARE(copy.date.toString(format) + u' ' + copy.due.toString(format), QLatin1String(expected));
    }

    void copiesAllButKeyAndStatus()
    {
        const QDate last = fileDays(today()).last;
        const task original = {.key = u"K"_s,
                               .date = last.addDays(-9).startOfDay(),
                               .due = last.startOfDay(),
                               .status = 1,
                               .statusName = u"Closed"_s,
                               .hidden = true};
        task copy = copyOnDay(original, last.addDays(-8));
        QVERIFY(copy.key.size() == 36 && copy.key != copyOnDay(original, last).key);
        QCOMPARE(copy.statusName, u"Open"_s);
        QCOMPARE(copy.date, last.addDays(-8).startOfDay());
        QCOMPARE(copy.due, last.startOfDay()); // the file holds no later one
        task expected = original;
        expected.key = copy.key;
        expected.date = copy.date;
        expected.status = 0;
        expected.statusName = copy.statusName;
        QCOMPARE(copy, expected);
    }
};

OBLINO_TEST(tst_repetition, QCoreApplication)

#include "tst_repetition.moc"
