#include "store.h"

#include <core/tasksearch.h>
#include <core/taskviews.h>

using namespace oblino;

using Times = Table<int, bool, bool, QByteArray>;
using Searches = Table<QString, QString, bool>;

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
        row("4 is in the hidden closed view", 4, !hidden, !due, "10000110000");
        row("5 is twice in the global view", 5, !hidden, !due, "10000020000");
        row("9 has a view past the last", 9, !hidden, !due, "10000010001");
        row("hidden and open", 0, hidden, !due, "00011011000");
        row("hidden and closed", 1, hidden, !due, "00010110100");
        row("hidden 2 is once in the hidden view", 2, hidden, !due, "00010010000");
        row("hidden 8 is not due", 8, hidden, !due, "00010010000");
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

    void keepsTheOrderOfTheList()
    {
        const QList<task> tasks = {
            {.key = u"f"_s, .status = 5}, {.key = u"H"_s, .hidden = true}, {.key = u"o"_s, .status = 0}};
        QCOMPARE(keysOf(tasksOfView(tasks, 6, QDate(2024, 3, 10))), u"ffHo"_s);
    }

    void comparesWholeDays()
    {
        const QDate day(2024, 3, 10);
        const auto isDue = [day](const QDateTime &due) { return timesInView({.due = due}, 9, day) == 1; };
        QVERIFY(!isDue(day.startOfDay().addMSecs(-1)));
        QVERIFY(isDue(day.startOfDay())); // which is not midnight
        QVERIFY(isDue(day.addDays(1).startOfDay().addMSecs(-1)));
        QVERIFY(!isDue(day.addDays(1).startOfDay()));
    }

    void findsTheTermInAText_data()
    {
        Searches row;
        row("first and last letter", u"AZ"_s, u"az"_s, true);
        row("beside the letters", u"@["_s, u"`{"_s, false);
        row("across a line feed", u"one\nTwo"_s, u"E\nt"_s, true);
        row("Ø", u"SØREN"_s, u"søren"_s, true);
        row("ẞ is ß", u"STRAẞE"_s, u"straße"_s, true);
        row("ẞ is not ss", u"STRAẞE"_s, u"strasse"_s, false);
        row("İ is i with a dot", u"İzmir"_s, u"i"_s, true);
        row("i is not İ", u"izmir"_s, u"İ"_s, false);
        row("upper case outside the basic plane", u"\U00010400"_s, u"\U00010428"_s, true);
        row("emoji with the same first half", u"Party 🎉!"_s, u"🎊"_s, false);
        row("no regular expression", u"a.*[b\\"_s, u".*[B\\"_s, true);
        row("a long term", QString(999, u'X') + u'y', QString(998, u'x') + u'Y', true);
    }

    void findsTheTermInAText()
    {
        const auto [text, term, found] = Searches::cells();
        QCOMPARE(!tasksMatching({{.key = {}, .name = text, .desc = {}, .client = {}, .teamMember = {}}}, term)
                      .isEmpty(),
                 found);
    }

    void looksInFiveFieldsAndKeepsTheOrder()
    {
        const QString needle = u"Needle"_s;
        const QList<task> tasks = {{.teamMember = needle, .status = 1},   {.status = 2, .statusName = needle},
                                   {.client = needle, .status = 3},       {.desc = needle, .status = 4},
                                   {.status = 5, .priorityName = needle}, {.key = needle, .status = 6},
                                   {.name = needle, .status = 7}};
        QString found;
        for (const task &t : tasksMatching(tasks, u"needle"_s))
            found += QString::number(t.status);
        QCOMPARE(found, u"13467"_s);
    }
};

OBLINO_TEST(tst_taskviews, QCoreApplication)

#include "tst_taskviews.moc"
