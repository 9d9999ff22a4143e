#include "tasksupport.h"

#include <core/namedfilters.h>

using Range = TaskFilter::Range;

class tst_taskfilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void admitsTheTasksOfItsKind_data()
    {
        // Monday 9 March 2026 is today; the task is Anna's for Ørsted, open, high, from its date to its due
        // date
        const Table<TaskFilter, QDate, QDate, bool> row;
        const QDate monday(2026, 3, 9);
        const auto range = [](Range kind, QDate from = {}, QDate to = {}) {
            return TaskFilter{.client = {},
                              .teamMember = {},
                              .status = {},

                              .range = kind,
                              .from = from,
                              .to = to};
        };
        row("everything", TaskFilter(), monday, monday, true);
        row("client, in other case", TaskFilter{.client = u"øRSTED"_s}, monday, monday, true);
        row("client, a part only", TaskFilter{.client = u"Ørst"_s}, monday, monday, false);
        row("another team member", TaskFilter{.teamMember = u"Bob"_s}, monday, monday, false);
        row("status", TaskFilter{.status = 0}, monday, monday, true);
        row("another status", TaskFilter{.status = 1}, monday, monday, false);
        row("another priority", TaskFilter{.priority = 0}, monday, monday, false);
        row("today, in the middle", range(Range::Today), monday.addDays(-3), monday.addDays(3), true);
        row("today, its last day", range(Range::Today), monday.addDays(-3), monday, true);
        row("today, over", range(Range::Today), monday.addDays(-3), monday.addDays(-1), false);
        row("today, due before it starts", range(Range::Today), monday, monday.addDays(-9), true);
        row("week, its last day", range(Range::ThisWeek), monday.addDays(6), monday.addDays(6), true);
        row("week, the next one", range(Range::ThisWeek), monday.addDays(7), monday.addDays(7), false);
        row("week, the one before", range(Range::ThisWeek), monday.addDays(-1), monday.addDays(-1), false);
        row("from, without an end", range(Range::FromTo, monday), monday.addDays(999), monday.addDays(999),
            true);
        row("to, without a beginning", range(Range::FromTo, {}, monday), monday.addDays(1), monday.addDays(1),
            false);
    }
    void admitsTheTasksOfItsKind()
    {
        const auto [filter, date, due, isAdmitted] = Table<TaskFilter, QDate, QDate, bool>::cells();
        const task t = {.date = date.startOfDay(),
                        .client = u"Ørsted"_s,
                        .teamMember = u"Anna"_s,
                        .due = due.startOfDay(),
                        .status = 0,
                        .priority = 2};
        QCOMPARE(TaskSieve(filter, QDate(2026, 3, 9), Qt::Monday).admits(t), isAdmitted);
    }

    void beginsTheWeekWhereTheLocaleDoes()
    {
        const QDate sunday(2026, 3, 8);
        const task t = {.date = sunday.startOfDay(), .due = sunday.startOfDay()};
        const TaskFilter week = {.range = Range::ThisWeek};
        QVERIFY(TaskSieve(week, sunday.addDays(1), Qt::Sunday).admits(t));
        QVERIFY(!TaskSieve(week, sunday.addDays(1), Qt::Monday).admits(t));
    }

    void isKeptUnderItsName()
    {
        const TemporaryHome home;
        const TaskFilter filter = {.client = u"a\t\"b\n|^ 李"_s,
                                   .teamMember = u"Dana"_s,
                                   .status = 1,

                                   .range = Range::FromTo,
                                   .from = QDate(2026, 3, 7),
                                   .to = QDate(2026, 4, 1)};
        const QString path = home.path(u"settings.ini"_s);
        {
            Defaults settings(path);
            NamedFilters filters(settings);
            QVERIFY(filters.keep(u"  my\tweek "_s, TaskFilter()));
            QVERIFY(filters.keep(u"my week"_s, filter)); // in its place
            QVERIFY(filters.keep(u"other"_s, filter) && !filters.keep(u" "_s, filter));
        }
        Defaults settings(path);
        NamedFilters filters(settings);
        QCOMPARE(filters.all().size(), 2);
        QCOMPARE(filters.all().first().first, u"my week"_s);
        QVERIFY(filters.all().first().second == filter);
        for (int i = 0; i < 60; ++i)
            QCOMPARE(filters.keep(u"many %1"_s.arg(i), filter), i < NamedFilters::most - 2);
        filters.clear();
        QVERIFY(!TemporaryHome::content(path).contains("Dana"));
        QVERIFY(!filterOfText(u"{\"range\":\"today\",\"more\":1}"_s) && !filterOfText({}));
    }
};

OBLINO_TEST(tst_taskfilter, QCoreApplication)

#include "tst_taskfilter.moc"
