#include "store.h"

#include <core/tasklistwriter.h>
#include <core/taskrowreader.h>
#include <platform/colorwell.h>
#include <platform/textview.h>

using namespace oblino;

using Searching = Table<bool>;
using Moves = Table<QString, QString, bool, QString>;
using Styles = Table<std::optional<QString>, bool>;

namespace {

struct Well : ColorWell
{
    Color color() const override { return shown; }
    void setColor(const Color &color) override { shown = color; }
    Color shown{0.2, 0.4, 1.0, 0.5};
};

struct Description : TextView
{
    QString text() const override { return {}; }
    void setText(const QString &) override {}
    Color textColor() const override { return shown; }
    void setTextColor(const Color &color) override { shown = color; }
    Color shown{0.5, 0.5, 0.5, 0.5};
};

QByteArray exampleRow(const QByteArray &key)
{
    return "3/7/24|Name|Desc|0.1|0.2|0.3|0.4|4/1/24|2|3|Status|Priority|" + key +
           "|true|9|30|11|15|Client|Member^";
}

// A task none of whose fields holds its default or what another field holds.
task example(const QByteArray &key)
{
    TaskRowReader reader(QDate::currentDate());
    const QString row = QString::fromUtf8(exampleRow(key).chopped(1));
    reader.split(row);
    return reader.read({}, false).value();
}

void editAsExample(TaskManager &store)
{
    const task t = example({});
    store.editSelectedTask(t.date, t.name, t.desc, t.color, t.due, t.status, t.priority, t.statusName,
                           t.priorityName, t.startHour, t.startMin, t.endHour, t.endMin, t.client,
                           t.teamMember);
}

QList<task> tasksOf(const QString &keys)
{
    QList<task> tasks;
    for (const QChar key : keys)
        tasks.append({.key = key, .name = key});
    return tasks;
}

} // namespace

class tst_taskstore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksOnTheFullList_data()
    {
        Searching row;
        row("outside a search", false);
        row("during a search", true);
    }

    void worksOnTheFullList()
    {
        const auto [searching] = Searching::cells();
        Store s;
        TaskManager &m = s.manager;
        m.setTasks(tasksOf(u"ab"_s));
        m.setIsSearching(searching);
        QCOMPARE(add(m, example("c")), u"c"_s);
        QCOMPARE(m.setSelected(u"b"_s), 1);
        m.hideSelected();
        QVERIFY(m.getHiddenSelected());
        editAsExample(m);
        QCOMPARE(taskListText({m.getSelectedTask()}, false), exampleRow("b"));
        QVERIFY(m.cloneSelected(nullptr));
        QVERIFY(m.closeSelected(nullptr));
        const QByteArray closed = exampleRow("b").replace("|2|3|Status|", "|1|3|Closed|");
        QCOMPARE(taskListText({m.fullList().at(1)}, false), closed);
        m.unhideSelected();
        QVERIFY(!m.getHiddenSelected());
        m.removeSelected();
        QCOMPARE(m.selected(), 1);
        const QByteArray cloneKey = m.fullList().last().key.toUtf8();
        QCOMPARE(keysOf(m.fullList()), u"ac"_s + QString::fromUtf8(cloneKey));
        QCOMPARE(taskListText(m.fullList().sliced(1), false), exampleRow("c") + exampleRow(cloneKey));
        QCOMPARE(m.fullList().first().name, u"a"_s);
        QCOMPARE(keysOf(m.tasks()), searching ? u"ab"_s : keysOf(m.fullList()));
    }

    void makesAKeyForATaskWithoutOne()
    {
        Store s;
        const QString key = add(s.manager, example({}));
        const QRegularExpression uuid(
            u"^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"_s);
        QVERIFY2(uuid.match(key).hasMatch(), qPrintable(key));
        QCOMPARE(s.manager.tasks().last().key, key);
        QVERIFY(add(s.manager, example({})) != key);
    }

    void handsOutABlankRecordWithTheLastTimes()
    {
        Store s;
        editAsExample(s.manager);
        task blank = s.manager.getSelectedTask();
        QVERIFY(blank.date.secsTo(QDateTime::currentDateTime()) < 60 && blank.due == blank.date);
        blank.date = blank.due = QDate(2024, 3, 7).startOfDay();
        QCOMPARE(taskListText({blank}, false),
                 "3/7/24|||1.0|1.0|1.0|1.0|3/7/24|0|0||||false|9|30|11|15|UnAssigned|UnAssigned^"_ba);
    }

    void selectsTheLastOfTwoTasksWithOneKey()
    {
        Store s;
        s.manager.setTasks(tasksOf(u"abbc"_s));
        QCOMPARE(s.manager.setSelected(u"a"_s), 0);
        QCOMPARE(s.manager.setSelected(u"b"_s), 2);
        QCOMPARE(s.manager.getSelectedTaskIndex(), 2);
        QCOMPARE(s.manager.setSelected(u"B"_s), -1);
    }

    void doesNothingOnceTheSelectedTaskIsGone()
    {
        Store s;
        TaskManager &m = s.manager;
        m.setTasks(tasksOf(u"ab"_s));
        for (const QString &key : {u"b"_s, u"no key"_s}) {
            m.setSelected(key);
            m.removeSelected();
            const QByteArray before = taskListText(m.tasks(), false);
            m.removeSelected();
            m.hideSelected();
            editAsExample(m);
            QVERIFY(!m.getHiddenSelected() && !m.closeSelected(nullptr) && !m.cloneSelected(nullptr));
            QVERIFY(!m.swapSelected(true) && !m.swapSelected(false));
            QCOMPARE(m.getSelectedTask().key, QString());
            QCOMPARE(taskListText(m.tasks(), false), before);
        }
    }

    void movesTheSelectedTaskByOnePlace_data()
    {
        Moves row; // results of a search if any, key, whether up, what comes out
        row("up", u""_s, u"b"_s, true, u"bacd"_s);
        row("down", u""_s, u"c"_s, false, u"abdc"_s);
        row("the first up", u""_s, u"a"_s, true, u"abcd"_s);
        row("the last down", u""_s, u"d"_s, false, u"abcd"_s);
        row("up among results", u"bcd"_s, u"d"_s, true, u"bdc"_s);
        row("down among results", u"ad"_s, u"a"_s, false, u"da"_s);
        row("the first result up", u"cd"_s, u"c"_s, true, u"cd"_s);
        row("the last result down", u"bc"_s, u"c"_s, false, u"bc"_s);
        row("not among the results", u"bc"_s, u"a"_s, false, u"bc"_s);
    }

    void movesTheSelectedTaskByOnePlace()
    {
        const auto [results, key, upper, moved] = Moves::cells();
        Store s;
        TaskManager &m = s.manager;
        m.setTasks(tasksOf(u"abcd"_s));
        m.setIsSearching(!results.isEmpty());
        if (m.isSearching())
            m.setTasks(tasksOf(results));
        const QString before = keysOf(m.tasks());
        const qint64 index = m.setSelected(key);
        QCOMPARE(m.swapSelected(upper), before != moved);
        QCOMPARE(keysOf(m.tasks()), moved);
        QCOMPARE(m.selected(), index);
        QVERIFY(!m.isSearching() || keysOf(m.backupTasks()) == u"abcd"_s);
    }

    void keepsTheFullListAsideDuringASearch()
    {
        Store s;
        TaskManager &m = s.manager;
        m.setTasks(tasksOf(u"bca"_s));
        m.setBackupTasks(tasksOf(u"stale"_s));
        m.setIsSearching(false);
        QCOMPARE(keysOf(m.tasks()), u"bca"_s);
        m.setIsSearching(true);
        m.setTasks(tasksOf(u"ca"_s));
        m.setIsSearching(true);
        m.sort({u"NameCellID"_s, true});
        QCOMPARE(keysOf(m.tasks()), u"ac"_s);
        m.setIsSearching(false);
        QCOMPARE(keysOf(m.tasks()), u"bca"_s);
    }

    void fillsTheViewOnlyWhenTheFilterIsSet()
    {
        Store s;
        const QDateTime today = QDate::currentDate().startOfDay();
        s.manager.setTasks({{.key = u"a"_s, .due = today.addDays(-1)}, {.key = u"b"_s, .due = today}});
        s.manager.setBackupTasks(tasksOf(u"x"_s));
        s.manager.setFilter(9);
        s.manager.removeAll();
        QVERIFY(s.manager.tasks().isEmpty() && s.manager.backupTasks().isEmpty());
        QCOMPARE(keysOf(s.manager.tasksInView()), u"b"_s);
        s.manager.setFilter(9);
        QVERIFY(s.manager.tasksInView().isEmpty());
    }

    void colorsAFormByTheAppearance_data()
    {
        Styles row;
        row("absent", std::nullopt, false);
        row("dark", u"Dark"_s, true);
        row("dark in lower case", u"dark"_s, false);
        row("another", u"Light"_s, false);
    }

    void colorsAFormByTheAppearance()
    {
        const auto [style, dark] = Styles::cells();
        const Color background = dark ? Color(0, 0, 0, 1) : Color(1, 1, 1, 1);
        Store s;
        s.appearance.setInterfaceStyle(style);
        QCOMPARE(s.manager.inDarkMode(), dark);
        Well well;
        Description inverted, reset;
        s.manager.invertColorWheeel(well, inverted);
        QVERIFY(well.shown == Color(0.8, 0.6, 0.0, 0.5) && inverted.shown == background.inverted());
        s.manager.invertColorWheeel(well, inverted);
        QVERIFY(well.shown == Color(0.2, 0.4, 1.0, 0.5));
        s.manager.changeColor(well, reset);
        QVERIFY(well.shown == background && reset.shown == background.inverted());
    }
};

OBLINO_TEST(tst_taskstore, QCoreApplication)

#include "tst_taskstore.moc"
