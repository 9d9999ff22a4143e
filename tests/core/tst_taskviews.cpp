#include "tasksupport.h"

#include <core/taskordering.h>
#include <core/tasksearch.h>
#include <core/taskviews.h>

using Orders = Table<std::function<QVariantList(const task &, bool)>>;
using Times = Table<int, bool, bool, QByteArray>;
using Searches = Table<QString, QString, bool>;

namespace {

// Tasks whose fields are often equal or nearly so, with moments around changes of the clocks.
QList<task> randomTasks(quint32 seed)
{
    QRandomGenerator random(seed);
    const QStringList pieces = {u""_s,       u"a"_s,       u"A"_s,          u"Task 1"_s,    u"0"_s,
                                u"é"_s,      u"e\u0301"_s, u"z"_s,          u"ÿ"_s,         u"\uff5e"_s,
                                u"\ue000"_s, u"\ud7ff"_s,  u"\U0001f600"_s, u"123456789"_s, u" "_s};
    const auto text = [&] {
        return pieces[random.bounded(15)] + pieces[random.bounded(15)] + pieces[random.bounded(15)];
    };
    const auto number = [&] {
        return random.bounded(20) == 0 ? std::numeric_limits<qint64>::min() : random.bounded(-1, 12);
    };
    // Of moveWhereMidnightsAreOdd(), and an ordinary one.
    const QDate days[] = {{2024, 3, 10}, {2024, 11, 3}, {2024, 7, 1}};
    const auto moment = [&] {
        const QDateTime utc(days[random.bounded(3)],
                            QTime(random.bounded(2, 9), random.bounded(2), 0, random.bounded(2)), Qt::UTC);
        return seed % 5 == 0 && random.bounded(2) ? utc : utc.toLocalTime(); // some lists hold both
    };
    QList<task> tasks;
    for (int i = 0; i < 60; ++i)
        tasks += {text(), moment(), text(),   text(),   text(),  text(),
                  {},     moment(), number(), number(), {},      QString::number(i),
                  false,  number(), number(), number(), number()};
    return tasks;
}

} // namespace

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
            times += QByteArray::number(placesInView({t}, view, day).size());
        QCOMPARE(times, expected);
    }

    void keepsTheOrderOfTheList()
    {
        const QList<task> tasks = {
            {.key = u"f"_s, .status = 5}, {.key = u"H"_s, .hidden = true}, {.key = u"o"_s, .status = 0}};
        QCOMPARE(keysOf(tasksAt(tasks, placesInView(tasks, 6, QDate(2024, 3, 10)))), u"ffHo"_s);
    }

    void comparesWholeDays()
    {
        const QDate day(2024, 3, 10);
        const auto isDue = [day](const QDateTime &due) {
            return occurrencesInView({.due = due}, 9, day) == 1;
        };
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
        row("decomposed in the text", u"Cafe\u0301"_s, u"CAFÉ"_s, true);
        row("decomposed in the term", u"CAFÉ"_s, u"cafe\u0301"_s, true);
        row("marks in another order", u"a\u0301\u0323"_s, u"ạ\u0301"_s, true);
        row("final sigma in the text", u"οδός"_s, u"ΟΔΌΣ"_s, true);
        row("final sigma in the term", u"ΟΔΌΣ 5"_s, u"οδός"_s, true);
        row("another accent", u"è"_s, u"é"_s, false);
        row("no regular expression", u"a.*[b\\"_s, u".*[B\\"_s, true);
        row("a long term", QString(999, u'X') + u'y', QString(998, u'x') + u'Y', true);
    }

    void findsTheTermInAText()
    {
        const auto [text, term, found] = Searches::cells();
        const QList<task> tasks = {{.key = {}, .name = text, .desc = {}, .client = {}, .teamMember = {}}};
        QCOMPARE(!TaskSearch().matching(tasks, term).empty(), found);
    }

    void looksInFiveFieldsAndKeepsTheOrder()
    {
        const QString needle = u"Needle"_s;
        const QList<task> tasks = {{.teamMember = needle, .status = 1},   {.status = 2, .statusName = needle},
                                   {.client = needle, .status = 3},       {.desc = needle, .status = 4},
                                   {.status = 5, .priorityName = needle}, {.key = needle, .status = 6},
                                   {.name = needle, .status = 7}};
        QString found;
        for (const task &t : tasksAt(tasks, TaskSearch().matching(tasks, u"needle"_s)))
            found += QString::number(t.status);
        QCOMPARE(found, u"13467"_s);
    }

    // Against a sort by values that are made in the plainest way.
    void ordersByEachColumnBothWays_data()
    {
        Orders row;
        for (const auto &[column, field] : {std::pair("NameCellID", &task::name),
                                            {"DescCellID", &task::desc},
                                            {"ClientCellID", &task::client},
                                            {"TeamMemberCellID", &task::teamMember},
                                            {"KeyCellID", &task::key}})
            row(column, [field](const task &t, bool) {
                QVariantList points; // of the composed form
                for (const uint point : (t.*field).normalized(QString::NormalizationForm_C).toUcs4())
                    points += point;
                return points;
            });
        for (const auto &[column, field] :
             {std::pair("StatusCellID", &task::status), {"PriorityCellID", &task::priority}})
            row(column, [field](const task &t, bool) { return QVariantList{t.*field}; });
        for (const auto &[column, field] : {std::pair("DateCellID", &task::date), {"DueCellID", &task::due}})
            row(column,
                [field](const task &t, bool) { return QVariantList{(t.*field).toMSecsSinceEpoch()}; });
        // As texts, with a colon between the numbers when ascending alone.
        const auto text = [](qint64 hour, qint64 minute, bool up) {
            QVariantList units;
            for (const QChar c : QString::number(hour) + (up ? u":"_s : u""_s) + QString::number(minute))
                units += c.unicode();
            return units;
        };
        row("StartTimeID", [text](const task &t, bool up) { return text(t.startHour, t.startMin, up); });
        row("EndTimeID", [text](const task &t, bool up) { return text(t.endHour, t.endMin, up); });
        row("namecellid", [](const task &, bool) { return QVariantList(); });
    }
    void ordersByEachColumnBothWays()
    {
        const auto [value] = Orders::cells();
        const auto isLess = [](const QVariantList &a, const QVariantList &b) {
            return std::lexicographical_compare(
                a.begin(), a.end(), b.begin(), b.end(),
                [](const QVariant &x, const QVariant &y) { return x.toLongLong() < y.toLongLong(); });
        };
        for (quint32 seed = 1; seed <= 20; ++seed) {
            const QList<task> tasks = randomTasks(seed);
            for (const bool up : {true, false}) {
                QList<task> expected = tasks;
                std::ranges::stable_sort(expected, [&, value = value](const task &a, const task &b) {
                    return up ? isLess(value(a, up), value(b, up)) : isLess(value(b, up), value(a, up));
                });
                const TaskPlaces order =
                    placesInOrder(tasks, {QString::fromLatin1(QTest::currentDataTag()), up});
                QVERIFY(tasksAt(tasks, order) == expected);
                QList<task> own = tasks;
                own.detach(); // is moved, not copied
                QVERIFY(rearranged(std::move(own), order) == expected);
            }
        }
    }
};

OBLINO_TEST(tst_taskviews, QCoreApplication)

#include "tst_taskviews.moc"
