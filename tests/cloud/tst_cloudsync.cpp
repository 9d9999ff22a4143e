#include "cloudfixture.h"

#include <support/secondconnection.h>

#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>

namespace {

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

const Color light(0.1, 0.3, 0.7, 0.5);

task named(const char *key, const char *name = "Name", bool hidden = false)
{
    const QDateTime start = QDate(2026, 3, 29).startOfDay();
    return makeTask(QString::fromUtf8(key), start, QLatin1String(name),
                    u"a|b^c\n'; DROP TABLE x\\"_s + QChar(0), light, start.addDays(2), 1, 2, u"Closed"_s,
                    u"High"_s, hidden, 9, 5, 17, 30, u"Øst & Co"_s, QString());
}

auto fieldsOf(const task &t)
{
    return std::tie(t.key, t.date, t.name, t.desc, t.due, t.status, t.priority, t.statusName, t.priorityName,
                    t.hidden, t.startHour, t.startMin, t.endHour, t.endMin, t.client, t.teamMember);
}

QString keys(const QList<task> &tasks)
{
    QStringList all;
    for (const task &t : tasks)
        all += t.key;
    return all.join(u' ');
}

} // namespace

class tst_cloudsync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsEveryFieldThereAndBack_data()
    {
        const Table<bool, bool> row;
        row("light", false, false);
        row("dark", true, true);
        row("up in the dark", true, false);
        row("down in the dark", false, true);
    }
    // The cloud has the colours of the light appearance.
    void bringsEveryFieldThereAndBack()
    {
        const auto [darkUp, darkDown] = Table<bool, bool>::cells();
        const auto style = [](bool dark) { return dark ? std::optional(u"Dark"_s) : std::nullopt; };
        Cloud cloud;
        cloud.appearance.setInterfaceStyle(style(darkUp));
        QList<task> tasks = {named("A"), named("B", "Ä\U0001F600", true)};
        for (task &t : tasks)
            t.color = darkUp ? light.inverted() : light;
        cloud.store.setTasks(tasks);
        QVERIFY(cloud.store.syncToCloudFromLocal());
        QCOMPARE(cloud.field("colorRed"), u"0.1 0.1"_s);
        cloud.appearance.setInterfaceStyle(style(darkDown));
        cloud.store.setTasks({});
        QVERIFY(cloud.store.syncToLocalFromCloud());
        QCOMPARE(cloud.store.lastMessage(), u"-iCloud:Update Complete!-"_s);
        QVERIFY(cloud.told.contains("reload"));
        QCOMPARE(cloud.store.tasks().size(), 2);
        for (qsizetype i = 0; i < 2; ++i) {
            QVERIFY(fieldsOf(cloud.store.tasks().at(i)) == fieldsOf(tasks.at(i)));
            QVERIFY(cloud.store.tasks().at(i).color == (darkDown ? light.inverted() : light));
        }
    }

    void mergesByKey()
    {
        Cloud cloud;
        cloud.put({named("B"), named("new"), named("B", "later", true), named("shown"),
                   named("new", "Name", true)});
        cloud.store.setTasks({named("local"), named("B"), named("shown", "Name", true), named("B")});
        cloud.store.setIsSearching(true);
        cloud.store.setTasks({}); // what is found
        QVERIFY(cloud.store.syncToLocalFromCloud());
        const QList<task> &merged = cloud.store.fullList();
        QCOMPARE(keys(merged), u"local B shown B new"_s);
        QCOMPARE(merged.at(1).name, u"Name"_s); // of those with one key the last is meant
        QCOMPARE(merged.at(3).name, u"later"_s);
        QVERIFY(merged.at(3).hidden && !merged.at(2).hidden && merged.at(4).hidden);
        QCOMPARE(cloud.store.getSelectedTask().key, u"new"_s);
    }

    // Whatever the file cannot hold as it is: the same task before and after the list is read again.
    void findsATaskOfAnOddKeyAgain()
    {
        Cloud cloud;
        cloud.put({named("a¦bˆ", "new"), named("a|b^", "old")}); // sent back once
        for (int start = 1; start <= 2; ++start) {
            QVERIFY(cloud.store.syncToLocalFromCloud());
            QCOMPARE(keys(cloud.store.tasks()), u"a¦bˆ"_s);
            QCOMPARE(cloud.store.tasks().value(0).name, u"new"_s);
            const QByteArray file = taskListText(cloud.store.tasks(), false);
            QVERIFY(file.contains("|a¦bˆ|"));
            cloud.store.setTasks(tasksInText(file, {}, false));
        }
        runAt(cloud.place, u"UPDATE \"cloud_private_Task\" SET \"name\" = 'changed'"_s);
        QVERIFY(cloud.store.syncToLocalFromCloud());
        QCOMPARE(keys(cloud.store.tasks()), u"a¦bˆ"_s);
        QCOMPARE(cloud.store.tasks().value(0).name, u"changed"_s);
    }

    void bringsYearsThatTheFileCannotHoldToItsEnds()
    {
        const int thisYear = QDate::currentDate().year();
        const QDate first(thisYear - 50, 1, 1), last(thisYear + 49, 12, 31);
        const std::pair<QDate, QDate> days[] = {{{1812, 6, 24}, first},  {first.addDays(-1), first},
                                                {first, first},          {last, last},
                                                {last.addDays(1), last}, {{2200, 1, 1}, last}};
        for (const auto &[sent, here] : days) {
            Cloud cloud;
            task t = named("A");
            t.date = t.due = QDateTime(sent, QTime(23, 30));
            cloud.put({t});
            QVERIFY(cloud.store.syncToLocalFromCloud());
            const task merged = cloud.store.tasks().value(0);
            const task reread = tasksInText(taskListText({merged}, false), {}, false).value(0);
            for (const QDateTime &day : {merged.date, merged.due, reread.date, reread.due})
                QCOMPARE(day.date(), here);
        }
    }

    void deletesEveryRecordOfAKey()
    {
        Cloud cloud;
        cloud.put({named("A"), named("B"), named("A")});
        cloud.container.setFate(Request::Query, Fate::Hold);
        QVERIFY(cloud.store.deleteTaskToCloud(u"A"_s)); // nobody waits
        cloud.container.release();
        QTRY_COMPARE(cloud.field("key"), u"B"_s);
    }

    void deletesAllRecords()
    {
        Cloud cloud;
        cloud.put({named("A"), named("B"), named("A")});
        cloud.container.setScript([](Request request, int number) {
            return request == Request::Delete && number == 0 ? Fate::Fail : Fate::Pass;
        });
        QVERIFY(!cloud.store.deleteAllTasksToCloud());
        QCOMPARE(cloud.field("key"), u"A"_s);
        QVERIFY(cloud.store.deleteAllTasksToCloud());
        QCOMPARE(cloud.field("key"), u""_s);
    }

    // What becomes of a list of A (with two records), B (with one) and C (with none).
    void tellsTheTruthInBadWeather_data()
    {
        // The requests that meet their fate begin with a number; then names in the cloud after sending.
        const Table<Request, int, Fate, QString> row;
        row("queries fail half way", Request::Query, 1, Fate::Fail, u"new new old"_s);
        row("queries are never answered", Request::Query, 0, Fate::Hold, u"old old old"_s);
        row("queries are dropped", Request::Query, 0, Fate::Drop, u"old old old"_s);
        row("saves fail half way", Request::Save, 1, Fate::Fail, u"new old old"_s);
        row("saves are dropped", Request::Save, 0, Fate::Drop, u"old old old"_s);
        row("the last save is never answered", Request::Save, 3, Fate::Hold, u"new new new"_s);
        row("the account is never told", Request::Status, 0, Fate::Hold, u"new new new new"_s);
    }
    void tellsTheTruthInBadWeather()
    {
        const auto [request, first, fate, saved] = Table<Request, int, Fate, QString>::cells();
        Cloud cloud(300ms);
        cloud.put({named("A", "old"), named("A", "old"), named("B", "old")});
        cloud.store.setTasks({named("A", "new"), named("B", "new"), named("C", "new")});
        cloud.container.setScript([request = request, first = first, fate = fate](Request asked, int number) {
            return asked == request && number >= first ? fate : Fate::Pass;
        });
        QVERIFY(!cloud.store.syncToCloudFromLocal());
        QCOMPARE(cloud.field("name"), saved);
        cloud.container.setFate(request, Fate::Pass);
        QVERIFY(cloud.store.syncToCloudFromLocal());
        QVERIFY(cloud.field("name").startsWith(u"new new new new"_s));
    }

    void saysWhyTheAccountCannotBeUsed_data()
    {
        const QString unknown = u"-iCloud:Cannot Login (Unknown)-"_s;
        const QString restricted = u"-iCloud:Cannot Login (Restricted)-"_s;
        const Table<AccountStatus, QByteArray, QString, QString> row;
        row("unclear", AccountStatus::CouldNotDetermine, "Cannot Determine Status-", unknown, unknown);
        row("available", AccountStatus::Available, "User is Logged In-", {}, {});
        row("restricted", AccountStatus::Restricted, "Restricted-", restricted, restricted);
        row("no account", AccountStatus::NoAccount, "User is NOT Logged In-",
            u"-iCloud:User is NOT Logged In-"_s, u"iCloud:User is NOT Logged In"_s);
        row("other", AccountStatus::TemporarilyUnavailable, "Cannot Determine Status-", unknown, unknown);
    }
    void saysWhyTheAccountCannotBeUsed()
    {
        const auto [status, traced, upMessage, downMessage] =
            Table<AccountStatus, QByteArray, QString, QString>::cells();
        Cloud cloud;
        cloud.container.status = status;
        cloud.store.setTasks({named("A")});
        bool succeeded = false;
        const QByteArray traces = tracesOf([&] { succeeded = cloud.store.syncToCloudFromLocal(); });
        QCOMPARE(succeeded, upMessage.isEmpty());
        QVERIFY2(traces.contains("-CloudKit:" + traced + '\n'), traces);
        QCOMPARE(cloud.store.lastMessage(), upMessage);
        QVERIFY(cloud.told.contains("update"));
        QCOMPARE(cloud.store.syncToLocalFromCloud(), downMessage.isEmpty());
        QVERIFY(succeeded || cloud.store.lastMessage() == downMessage);
    }

    void saysWhyItHasFailedUntilItWorks_data()
    {
        using Operation = std::function<void(TaskManager &)>;
        const Table<Request, Fate, Operation, QString> row;
        const Operation send = [](TaskManager &store) { (void)store.syncToCloudFromLocal(); };
        const Operation merge = [](TaskManager &store) { (void)store.syncToLocalFromCloud(); };
        const Operation erase = [](TaskManager &store) { (void)store.deleteAllTasksToCloud(); };
        const Operation remove = [](TaskManager &store) { (void)store.deleteTaskToCloud(u"A"_s); };
        const QString silence = u"The cloud does not answer."_s;
        row("a save fails", Request::Save, Fate::Fail, send, u"scripted"_s);
        row("a query fails", Request::Query, Fate::Fail, merge, u"scripted"_s);
        row("a deletion fails", Request::Delete, Fate::Fail, erase, u"scripted"_s);
        row("a deletion fails for which nobody waits", Request::Delete, Fate::Fail, remove, u"scripted"_s);
        row("no answer", Request::Query, Fate::Hold, merge, silence);
        row("an answer is lost", Request::Query, Fate::Drop, merge, silence);
    }
    void saysWhyItHasFailedUntilItWorks()
    {
        const auto [request, fate, operation, cause] =
            Table<Request, Fate, std::function<void(TaskManager &)>, QString>::cells();
        Cloud cloud(300ms);
        const QSignalSpy failures(&cloud.store, &TaskManager::cloudFailed);
        const QSignalSpy successes(&cloud.store, &TaskManager::cloudSucceeded);
        cloud.put({named("A")});
        cloud.store.setTasks({named("A")});
        cloud.container.setFate(request, fate);
        operation(cloud.store);
        QTRY_COMPARE(failures.size(), 1);
        QCOMPARE(failures.first().first().toString(), cause);
        QCOMPARE(successes.size(), 0);
        cloud.container.setFate(request, Fate::Pass);
        cloud.store.setLastMessage(u"-iCloud:Cannot Login (Unknown)-"_s);
        operation(cloud.store);
        QTRY_COMPARE(successes.size(), 1);
        QCOMPARE(failures.size(), 1);
        QVERIFY(!cloud.store.lastMessage().contains(u"Cannot Login"_s));
    }

    void tracesEachOperation()
    {
        Cloud cloud;
        const QByteArray traces = tracesOf([&cloud] {
            cloud.store.setTasks({named("A", "Name", true)});
            (void)cloud.store.syncToCloudFromLocal();
            cloud.container.setFate(Request::Save, Fate::Fail);
            cloud.appearance.setInterfaceStyle(u"Dark"_s);
            (void)cloud.store.syncToCloudFromLocal();
            (void)cloud.store.syncToLocalFromCloud();
        });
        for (const char *part :
             {"Sync To CloudKit, #Tasks: 1\nContainer: /", "\nCloudKit Edit - Return Saved: true\n",
              "\nCloudKit Edit - Record Not Found - Add\n", "\nRecord: Task ",
              "\nAdd Task to Cloud, hidden: true\n", "\n-CloudKit:Save Success-\n",
              "\nInverted -> Switch to original\n", "\n-CloudKit:Save Error-\n", "\nCloudKit record: Task ",
              "\nIn dark mode -> Invert\nSelected: 0\nEdit Task\nSelected Task: A Name\n"})
            QVERIFY2(traces.contains(part), part);
    }

    void findsOtherUsers()
    {
        Cloud cloud;
        const auto discover = [&cloud] {
            cloud.store.discoverUsersUsingApp(u"+49 1"_s);
            (void)cloud.records();
            QCoreApplication::processEvents();
        };
        QCOMPARE(tracesOf(discover), "fetch user by phone error  no identity\n");
        runAt(cloud.place, u"INSERT INTO \"cloud_public_UserIdentity\" VALUES ('a', '+49 2', 'Bert', 0), "
                           "('b', '+49 1', 'Anna', 0)"_s);
        QCOMPARE(tracesOf(discover), "user identity was discovered  Anna +49 1\n");
    }
};

OBLINO_TEST(tst_cloudsync, QCoreApplication)

#include "tst_cloudsync.moc"
