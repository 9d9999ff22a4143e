#include "store.h"

#include <core/taskviews.h>

using namespace oblino;

using Times = Table<int, bool, bool, QByteArray>;
using Orders = Table<int, QString>;
using Moments = Table<QDateTime, bool>;

class tst_taskviews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { moveWhereMidnightsAreOdd(); }

    void listsATaskAsOftenAsRulesAdmitIt_data()
    {
        constexpr bool hidden = true;
        constexpr bool due = true;
        Times row; // the digits say how often the task is in view 0, 1, ... 10
        row("below every status", -1, !hidden, !due, "10000010000");
        row("open", 0, !hidden, !due, "11000011000");
        row("closed", 1, !hidden, !due, "10100010100");
        row("2 is in the hidden view", 2, !hidden, !due, "10010010000");
        row("3 is in the hidden open view", 3, !hidden, !due, "10001010000");
        row("4 is in the hidden closed view", 4, !hidden, !due, "10000110000");
        row("5 is twice in the global view", 5, !hidden, !due, "10000020000");
        row("6 is in the global open view", 6, !hidden, !due, "10000011000");
        row("7 is in the global closed view", 7, !hidden, !due, "10000010100");
        row("8 is in the view of what is due", 8, !hidden, !due, "10000010010");
        row("9 has a view past the last", 9, !hidden, !due, "10000010001");
        row("hidden, below every status", -1, hidden, !due, "00010010000");
        row("hidden and open", 0, hidden, !due, "00011011000");
        row("hidden and closed", 1, hidden, !due, "00010110100");
        row("hidden 2 is once in the hidden view", 2, hidden, !due, "00010010000");
        row("hidden 5 is once in the global view", 5, hidden, !due, "00010010000");
        row("hidden 8 is not due", 8, hidden, !due, "00010010000");
        row("open and due", 0, !hidden, due, "11000011010");
        row("hidden and due", 0, hidden, due, "00011011010");
        row("8 and due is twice there", 8, !hidden, due, "10000010020");
    }

    void listsATaskAsOftenAsRulesAdmitIt()
    {
        const auto [status, hidden, dueToday, expected] = Times::cells();
        const QDate day(2024, 3, 10);
        const task t = {
            .due = day.addDays(dueToday ? 0 : 1).startOfDay(), .status = status, .hidden = hidden};
        QByteArray times;
        for (int view = 0; view <= 10; ++view)
            times += QByteArray::number(tasksOfView({t}, view, day).size());
        QCOMPARE(times, expected);
    }

    void keepsTheOrderOfTheList_data()
    {
        Orders row;
        row("not hidden", 0, u"fogF"_s);
        row("hidden", 3, u"HcG"_s);
        row("hidden and closed, or 4", 5, u"cg"_s);
        row("all, 5 twice", 6, u"ffoHcgGFF"_s);
        row("none", 11, u""_s);
    }

    void keepsTheOrderOfTheList()
    {
        const auto [view, keys] = Orders::cells();
        const QList<task> tasks = {
            {.key = u"f"_s, .status = 5},    {.key = u"o"_s, .status = 0},
            {.key = u"H"_s, .hidden = true}, {.key = u"c"_s, .status = 1, .hidden = true},
            {.key = u"g"_s, .status = 4},    {.key = u"G"_s, .status = 5, .hidden = true},
            {.key = u"F"_s, .status = 5}};
        QCOMPARE(keysOf(tasksOfView(tasks, view, QDate(2024, 3, 10))), keys);
    }

    void comparesWholeDays_data()
    {
        Moments row;
        row("the day before", QDateTime(QDate(2024, 3, 9), QTime(23, 59, 59, 999)), false);
        row("its first moment, not midnight", QDate(2024, 3, 10).startOfDay(), true);
        row("its last moment", QDateTime(QDate(2024, 3, 10), QTime(23, 59, 59, 999)), true);
        row("the day after", QDate(2024, 3, 11).startOfDay(), false);
        row("a year before", QDate(2023, 3, 10).startOfDay(), false);
    }

    void comparesWholeDays()
    {
        const auto [due, isDue] = Moments::cells();
        QCOMPARE(timesInView({.due = due, .hidden = true}, 9, QDate(2024, 3, 10)), isDue ? 1 : 0);
    }
};

OBLINO_TEST(tst_taskviews, QCoreApplication)

#include "tst_taskviews.moc"
