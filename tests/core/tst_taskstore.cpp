#include "tasksupport.h"

#include <core/tasklistwriter.h>
#include <core/taskrowreader.h>

namespace {

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
    void worksOnTheFullList()
    {
        for (const bool searching : {false, true}) {
            Store s;
            TaskManager &m = s.store;
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
            const QByteArray cloneKey = m.fullList().last().key.toUtf8();
            QCOMPARE(keysOf(m.fullList()), u"ac"_s + QString::fromUtf8(cloneKey));
            QCOMPARE(taskListText(m.fullList().sliced(1), false), exampleRow("c") + exampleRow(cloneKey));
            QCOMPARE(keysOf(m.tasks()), searching ? u"ab"_s : keysOf(m.fullList()));
        }
    }

    void startsATaskWithItsDefaultsAndTheLastTimes()
    {
        const auto rowOf = [](task t) {
            t.date = t.due = QDate(2024, 3, 7).startOfDay();
            return taskListText({t}, false);
        };
        QCOMPARE(rowOf({}), "3/7/24|Unnamed|UnDescribed|1.0|1.0|1.0|1.0|3/7/24|0|0|NoStatus|NoPriority|NoKey|"
                            "false|8|0|17|0|UnAssigned|UnAssigned^"_ba);
        Store s;
        editAsExample(s.store);
        QCOMPARE(rowOf(s.store.getSelectedTask()),
                 "3/7/24|||1.0|1.0|1.0|1.0|3/7/24|0|0||||false|9|30|11|15|UnAssigned|UnAssigned^"_ba);
    }

    void selectsTheLastOfTwoTasksWithOneKey()
    {
        Store s;
        s.store.setTasks(tasksOf(u"abbc"_s));
        QCOMPARE(s.store.setSelected(u"b"_s), 2);
        QCOMPARE(s.store.setSelected(u"B"_s), -1);
    }

    void doesNothingOnceTheSelectedTaskIsGone()
    {
        Store s;
        TaskManager &m = s.store;
        m.setTasks(tasksOf(u"ab"_s));
        m.setSelected(u"b"_s);
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

    void keepsTheFullListAsideDuringASearch()
    {
        Store s;
        TaskManager &m = s.store;
        m.setTasks(tasksOf(u"bca"_s));
        m.setIsSearching(true);
        m.setTasks(tasksOf(u"ca"_s));
        m.setIsSearching(true);
        m.sort({u"NameCellID"_s, true});
        QCOMPARE(keysOf(m.tasks()), u"ac"_s);
        m.setIsSearching(false);
        QCOMPARE(keysOf(m.tasks()), u"bca"_s);
    }
};

OBLINO_TEST(tst_taskstore, QCoreApplication)

#include "tst_taskstore.moc"
