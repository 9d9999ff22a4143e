#include "tasksupport.h"

#include <core/taskordering.h>
#include <core/tasksearch.h>
#include <core/taskviews.h>

using Orders = Table<QString, QList<task>, QString, QString>;
using Texts = QList<QString>;
using Pairs = QList<std::pair<qint64, qint64>>;
using Moments = QList<QDateTime>;
using Times = Table<int, bool, bool, QByteArray>;
using Searches = Table<QString, QString, bool>;

namespace {

// Tasks that differ in one field, or two, and are told apart by their labels a, b, c...
template<typename Value, typename Field>
QList<task> tasksWith(const QList<Value> &values, const Field &field)
{
    QList<task> tasks;
    for (const Value &value : values) {
        tasks.append({.date = {}, .due = {}, .priorityName = QChar(u'a' + static_cast<int>(tasks.size()))});
        std::invoke(field, tasks.last()) = value;
    }
    return tasks;
}

QString labels(const QList<task> &tasks)
{
    QString text;
    for (const task &t : tasks)
        text += t.priorityName;
    return text;
}

QDateTime utc(int hour, int minute)
{
    return QDateTime(QDate(2024, 11, 3), QTime(hour, minute), Qt::UTC);
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

    void ordersMomentsAroundChangesOfTheClocks()
    {
        QRandomGenerator random(1);
        for (const QDate day : {QDate(2024, 3, 10), QDate(2024, 3, 31), QDate(2024, 4, 7), QDate(2024, 9, 29),
                                QDate(2024, 10, 27), QDate(2024, 11, 3)}) {
            QList<task> tasks;
            for (int i = 0; i < 300; ++i) {
                const QDateTime utc(day.addDays(random.bounded(-2, 3)),
                                    QTime(random.bounded(24), random.bounded(2)), Qt::UTC);
                tasks.append({.date = utc.toLocalTime(), .name = QString::number(i)});
            }
            for (const bool ascending : {true, false}) {
                QList<task> expected = tasks;
                std::ranges::stable_sort(expected, [ascending](const task &a, const task &b) {
                    return ascending ? a.date < b.date : b.date < a.date;
                });
                QVERIFY(tasksAt(tasks, placesInOrder(tasks, {u"DateCellID"_s, ascending})) == expected);
            }
        }
    }

    void ordersTasks_data()
    {
        Orders row;
        addTexts(row);
        addNumbersAndTimes(row);
        addMoments(row);
        row("unknown key", u"namecellid"_s, tasksWith(Texts{u"b"_s, u"c"_s, u"a"_s}, &task::name), u"abc"_s,
            u"abc"_s);
    }

    void ordersTasks()
    {
        auto [key, tasks, ascending, descending] = Orders::cells();
        QCOMPARE(labels(tasksAt(tasks, placesInOrder(tasks, {key, true}))), ascending);
        const TaskPlaces order = placesInOrder(tasks, {key, false});
        tasks.detach(); // a list of its own is moved, not copied
        QCOMPARE(labels(rearranged(std::move(tasks), order)), descending);
    }

private:
    static void addTexts(const Orders &row)
    {
        const Texts words = {u"beta"_s, u"Alpha"_s, u"alpha"_s};
        row("name", u"NameCellID"_s, tasksWith(words, &task::name), u"bca"_s, u"acb"_s);
        row("description", u"DescCellID"_s, tasksWith(words, &task::desc), u"bca"_s, u"acb"_s);
        row("client", u"ClientCellID"_s, tasksWith(words, &task::client), u"bca"_s, u"acb"_s);
        row("team member", u"TeamMemberCellID"_s, tasksWith(words, &task::teamMember), u"bca"_s, u"acb"_s);
        row("key", u"KeyCellID"_s, tasksWith(words, &task::key), u"bca"_s, u"acb"_s);
        const auto names = [&row](const char *name, const Texts &texts, const QString &up,
                                  const QString &down) {
            row(name, u"NameCellID"_s, tasksWith(texts, &task::name), up, down);
        };
        const QString many = labels(tasksWith(Texts(40), &task::name));
        names("equal ones stay in order", Texts(20, u"x"_s) + Texts(20, u"a"_s),
              many.last(20) + many.first(20), many);
        names("a text after its start", {u"ab"_s, u"a"_s, u""_s}, u"cba"_s, u"abc"_s);
        names("the tenth character decides", {u"1234567892"_s, u"1234567891"_s}, u"ba"_s, u"ab"_s);
        names("digits are characters", {u"Task 9"_s, u"Task 10"_s}, u"ba"_s, u"ab"_s);
        names("no locale", {u"ä"_s, u"z"_s, u"ÿ"_s}, u"bac"_s, u"cab"_s);
        names("precomposed equals decomposed", {u"\u00e9"_s, u"z"_s, u"e\u0301"_s}, u"bac"_s, u"acb"_s);
        names("surrogates stand for the highest",
              {u"\uff5e"_s, u"\U0001f600"_s, u"z"_s, u"\ue000"_s, u"\ud7ff"_s}, u"cedab"_s, u"badec"_s);
    }

    static void addNumbersAndTimes(const Orders &row)
    {
        const QList<qint64> numbers = {2, -1, 10, 2, std::numeric_limits<qint64>::min()};
        row("status, by index", u"StatusCellID"_s, tasksWith(numbers, &task::status), u"ebadc"_s, u"cadbe"_s);
        row("priority, by index", u"PriorityCellID"_s, tasksWith(numbers, &task::priority), u"ebadc"_s,
            u"cadbe"_s);
        const auto times = [&row](const char *name, const Pairs &values, const QString &up,
                                  const QString &down) {
            const auto start = [](task &t) { return std::tie(t.startHour, t.startMin); };
            const auto end = [](task &t) { return std::tie(t.endHour, t.endMin); };
            row(name, u"StartTimeID"_s, tasksWith(values, start), up, down);
            row(("end: "_ba + name).constData(), u"EndTimeID"_s, tasksWith(values, end), up, down);
        };
        times("as texts", {{8, 5}, {8, 30}, {9, 5}, {10, 30}}, u"dbac"_s, u"cabd"_s);
        times("ten before one, both ways", {{1, 0}, {10, 0}}, u"ba"_s, u"ba"_s);
        times("different but equal when descending", {{1, 30}, {13, 0}}, u"ba"_s, u"ab"_s);
    }

    static void addMoments(const Orders &row)
    {
        const auto moments = [&row](const char *name, const Moments &values, const QString &up,
                                    const QString &down) {
            row(name, u"DateCellID"_s, tasksWith(values, &task::date), up, down);
            row(("due: "_ba + name).constData(), u"DueCellID"_s, tasksWith(values, &task::due), up, down);
        };
        const QDate day(2024, 3, 10);
        const QDateTime start = day.startOfDay();
        moments("to the millisecond", {start.addMSecs(1), start, start.addMSecs(1)}, u"bac"_s, u"acb"_s);
        moments("a day without midnight", {day.addDays(1).startOfDay(), start, day.addDays(-1).startOfDay()},
                u"cba"_s, u"abc"_s);
        // 5:10 UTC is the second 0:10 of the day whose clock is put back, 4:30 UTC its first 0:30.
        moments("an hour that comes twice", {utc(5, 10).toLocalTime(), utc(4, 30).toLocalTime()}, u"ba"_s,
                u"ab"_s);
        moments("one clock time, in two zones", {utc(5, 10).toLocalTime(), utc(0, 10)}, u"ba"_s, u"ab"_s);
    }
};

OBLINO_TEST(tst_taskviews, QCoreApplication)

#include "tst_taskviews.moc"
