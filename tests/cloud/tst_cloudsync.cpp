#include "cloudfixture.h"

#include <support/testmain.h>
#include <support/traces.h>

#include <cloud/cloudkitcontroller.h>

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

using namespace oblino;
using namespace std::chrono_literals;

namespace {

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

task named(const char *key, bool hidden = false, const Color &color = {0.1, 0.3, 0.7, 0.5})
{
    const QDateTime start = QDate(2026, 3, 29).startOfDay();
    return makeTask(QLatin1String(key), start, QStringLiteral("Name of ") + QLatin1String(key),
                    QStringLiteral("a|b^c\n'; DROP TABLE x\\"), color, start.addDays(2), 1, 2,
                    QStringLiteral("Closed"), QStringLiteral("High"), hidden, 9, 5, 17, 30,
                    QStringLiteral("Øst & Co"), QString());
}

// Every field of the tasks.
QByteArray fields(const QList<task> &tasks)
{
    QByteArray all;
    for (const task &t : tasks) {
        appendTrace(all, newTaskRecord(t, false));
        all.replace(all.indexOf("Task ") + 5, 36, "");
        all += '\n';
        all.replace("Task  ", "");
    }
    return all;
}

QString keys(const QList<task> &tasks)
{
    QStringList all;
    for (const task &t : tasks)
        all += t.key;
    return all.join(QLatin1Char(' '));
}

bool send(TaskManager &store, const task &t)
{
    return store.editTaskToCloud(t.key, t.date, t.name, t.desc, t.color, t.due, t.status, t.priority,
                                 t.statusName, t.priorityName, t.hidden, t.startHour, t.startMin, t.endHour,
                                 t.endMin, t.client, t.teamMember);
}

// The kinds of traces, each once, sorted.
QByteArrayList kinds(const QByteArray &traces)
{
    QByteArrayList all;
    for (const QByteArray &line : traces.split('\n')) {
        const QByteArray kind = line.startsWith("-CloudKit") ? line : line.left(line.indexOf(':'));
        if (!kind.isEmpty() && !all.contains(kind))
            all += kind;
    }
    std::sort(all.begin(), all.end());
    return all;
}

} // namespace

class tst_cloudsync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsEveryFieldThereAndBack()
    {
        Cloud cloud;
        const QList<task> tasks = {named("A"), named("B", true), named("C", false, {0, 1, 0.25, 1})};
        cloud.store.setTasks(tasks);
        QVERIFY(cloud.store.syncToCloudFromLocal());
        QCOMPARE(cloud.field("key").split(QLatin1Char(' ')).size(), 3);
        cloud.store.setTasks({});
        QVERIFY(cloud.store.syncToLocalFromCloud());
        const QList<task> merged = cloud.store.tasks();
        QCOMPARE(fields(merged), fields(tasks));
        QVERIFY(merged.first().color == tasks.first().color);
        QCOMPARE(cloud.store.lastMessage(), QStringLiteral("-iCloud:Update Complete!-"));
        QCOMPARE(cloud.told.count("reload"), 1);
        QCOMPARE(cloud.store.defaultStartMin(), 5);
    }

    void rewritesWhatIsThereAndAddsTheRest()
    {
        Cloud cloud;
        cloud.put({named("A"), named("B"), named("B")});
        const QList<CloudRecord> before = cloud.records();
        task changed = named("B");
        changed.name = QStringLiteral("changed");
        cloud.store.setTasks({named("A"), changed, named("C")});
        QVERIFY(cloud.store.syncToCloudFromLocal());
        const QList<CloudRecord> after = cloud.records();
        QCOMPARE(after.size(), 4);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(after.at(i).recordName(), before.at(i).recordName());
        QCOMPARE(after.at(2).value(QStringLiteral("name")), QVariant(QStringLiteral("changed")));
        QCOMPARE(after.at(3).recordName().size(), 36);
        QVERIFY(after.at(3).recordName() != after.at(3).value(QStringLiteral("key")).toString());
    }

    void mergesByKey_data()
    {
        QTest::addColumn<bool>("searching");
        QTest::newRow("list") << false;
        QTest::newRow("while searching") << true;
    }

    void mergesByKey()
    {
        QFETCH(bool, searching);
        Cloud cloud;
        task later = named("B", true);
        later.name = QStringLiteral("later");
        cloud.put({named("B"), named("new"), later, named("shown"), named("new", true)});
        cloud.store.setTasks({named("local"), named("B"), named("shown", true), named("B")});
        cloud.store.setIsSearching(searching);
        if (searching)
            cloud.store.setTasks({});
        QVERIFY(cloud.store.syncToLocalFromCloud());
        const QList<task> &merged = cloud.store.fullList();
        QCOMPARE(keys(merged), QStringLiteral("local B shown B new"));
        QCOMPARE(fields(merged.first(2)), fields({named("local"), named("B")}));
        QCOMPARE(merged.at(3).name, QStringLiteral("later"));
        QVERIFY(merged.at(3).hidden && !merged.at(2).hidden && merged.at(4).hidden);
        QCOMPARE(cloud.store.getSelectedTask().key, QStringLiteral("new"));
    }

    void takesDefaultsForWhatARecordLacks()
    {
        Cloud cloud;
        CloudRecord poor(taskRecordType(), QStringLiteral("R"));
        poor.setValue(QStringLiteral("name"), QStringLiteral("poor"));
        cloud.put(poor);
        QVERIFY(cloud.store.syncToLocalFromCloud());
        const task merged = cloud.store.tasks().value(0);
        const task made;
        QCOMPARE(merged.key, made.key);
        QCOMPARE(merged.name, QStringLiteral("poor"));
        QCOMPARE(merged.client, made.client);
        QVERIFY(merged.color == Color() && merged.date.isValid());

        poor.setValue(QStringLiteral("status"), QStringLiteral("3"));
        poor.setValue(QStringLiteral("client"), 7);
        const task odd = taskOfRecord(poor, false);
        QCOMPARE(odd.status, 0);
        QCOMPARE(odd.client, made.client);
    }

    void keepsTheLightColourInTheCloud_data()
    {
        QTest::addColumn<bool>("darkUp");
        QTest::addColumn<bool>("darkDown");
        QTest::newRow("light") << false << false;
        QTest::newRow("dark") << true << true;
        QTest::newRow("up in the dark") << true << false;
        QTest::newRow("down in the dark") << false << true;
    }

    void keepsTheLightColourInTheCloud()
    {
        QFETCH(bool, darkUp);
        QFETCH(bool, darkDown);
        const Color light(0.1, 0.3, 0.7, 0.5);
        const auto style = [](bool dark) {
            return dark ? std::optional(QStringLiteral("Dark")) : std::nullopt;
        };
        Cloud cloud;
        cloud.appearance.setInterfaceStyle(style(darkUp));
        cloud.store.setTasks({named("A", false, darkUp ? light.inverted() : light)});
        QVERIFY(cloud.store.syncToCloudFromLocal());
        QCOMPARE(cloud.field("colorRed"), QStringLiteral("0.1"));
        QCOMPARE(cloud.field("colorAlpha"), QStringLiteral("0.5"));
        cloud.appearance.setInterfaceStyle(style(darkDown));
        cloud.store.setTasks({});
        QVERIFY(cloud.store.syncToLocalFromCloud());
        QVERIFY(cloud.store.tasks().first().color == (darkDown ? light.inverted() : light));
    }

    void doesNothingWithNothing()
    {
        Cloud cloud;
        QVERIFY(cloud.store.syncToCloudFromLocal());
        cloud.store.setTasks({named("A")});
        cloud.told.clear();
        QVERIFY(!cloud.store.syncToLocalFromCloud());
        QVERIFY(!cloud.store.deleteAllTasksToCloud());
        QVERIFY(!cloud.told.contains("reload"));
        QCOMPARE(keys(cloud.store.tasks()), QStringLiteral("A"));
    }

    void deletesEveryRecordOfAKey()
    {
        Cloud cloud;
        cloud.put({named("A"), named("B"), named("A")});
        QVERIFY(cloud.store.deleteTaskToCloud(QStringLiteral("none")));
        QVERIFY(cloud.store.deleteTaskToCloud(QStringLiteral("A")));
        QTRY_COMPARE(cloud.field("key"), QStringLiteral("B"));
        QVERIFY(cloud.store.deleteAllTasksToCloud());
        QVERIFY(cloud.records().isEmpty());
    }

    // What becomes of a list of A (with two records), B (with one) and C (with none).
    void tellsTheTruthInBadWeather_data()
    {
        QTest::addColumn<int>("request");
        QTest::addColumn<int>("first"); // of the requests that meet their fate
        QTest::addColumn<int>("fate");
        QTest::addColumn<QString>("saved"); // names in the cloud after sending
        const auto row = [](const char *name, Request request, int first, Fate fate, const char *saved) {
            QTest::newRow(name) << int(request) << first << int(fate) << QString::fromLatin1(saved);
        };
        row("query fails", Request::Query, 0, Fate::Fail, "old old old");
        row("second query fails", Request::Query, 1, Fate::Fail, "new new old new");
        row("queries are never answered", Request::Query, 0, Fate::Hold, "old old old");
        row("queries are dropped", Request::Query, 0, Fate::Drop, "old old old");
        row("a save fails in the middle", Request::Save, 1, Fate::Fail, "new old old");
        row("saves are never answered", Request::Save, 0, Fate::Drop, "old old old");
        row("the last save is never answered", Request::Save, 3, Fate::Hold, "new new new");
        row("the account is never told", Request::Status, 0, Fate::Hold, "new new new new");
    }

    void tellsTheTruthInBadWeather()
    {
        QFETCH(int, request);
        QFETCH(int, first);
        QFETCH(int, fate);
        QFETCH(QString, saved);
        const bool single = QByteArray(QTest::currentDataTag()) == "second query fails";
        Cloud cloud(300ms);
        const auto withName = [](const char *key, const char *name) {
            task t = named(key);
            t.name = QLatin1String(name);
            return t;
        };
        cloud.put({withName("A", "old"), withName("A", "old"), withName("B", "old")});
        cloud.store.setTasks({withName("A", "new"), withName("B", "new"), withName("C", "new")});
        cloud.container.setScript([=](Request asked, int number) {
            const bool meant = single ? number == first : number >= first;
            return int(asked) == request && meant ? Fate(fate) : Fate::Pass;
        });
        QVERIFY(!cloud.store.syncToCloudFromLocal());
        QCOMPARE(cloud.field("name"), saved);

        cloud.container.setScript([](Request, int) { return Fate::Pass; });
        QVERIFY(cloud.store.syncToCloudFromLocal());
        QVERIFY(cloud.field("name").startsWith(QStringLiteral("new new new new")));
    }

    void leavesTheListAloneWhenTheMergeFails_data()
    {
        QTest::addColumn<int>("fate");
        QTest::newRow("error") << int(Fate::Fail);
        QTest::newRow("no records") << int(Fate::Nothing);
        QTest::newRow("dropped") << int(Fate::Drop);
        QTest::newRow("answered too late") << int(Fate::Hold);
    }

    void leavesTheListAloneWhenTheMergeFails()
    {
        QFETCH(int, fate);
        Cloud cloud(200ms);
        cloud.put({named("A")});
        cloud.container.setScript(
            [fate](Request request, int) { return request == Request::Query ? Fate(fate) : Fate::Pass; });
        bool alive = false;
        QTimer::singleShot(0, this, [&alive] { alive = true; });
        QVERIFY(!cloud.store.syncToLocalFromCloud());
        QVERIFY(alive);
        cloud.container.release();
        (void)cloud.records();
        QCoreApplication::processEvents();
        QVERIFY(cloud.store.tasks().isEmpty());
        QVERIFY(!cloud.told.contains("reload"));
    }

    void failsADeletionThatFails()
    {
        Cloud cloud;
        cloud.put({named("A"), named("B")});
        cloud.container.setScript([](Request request, int number) {
            return request == Request::Delete && number == 0 ? Fate::Fail : Fate::Pass;
        });
        QVERIFY(!cloud.store.deleteAllTasksToCloud());
        QCOMPARE(cloud.field("key"), QStringLiteral("A"));
    }

    void saysWhyTheAccountCannotBeUsed_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("traced");
        QTest::addColumn<QString>("message");
        const auto row = [](AccountStatus status, const char *traced, const char *message) {
            QTest::newRow(traced) << int(status) << QByteArray(traced) << QString::fromLatin1(message);
        };
        row(AccountStatus::CouldNotDetermine, "-CloudKit:Cannot Determine Status-",
            "-iCloud:Cannot Login (Unknown)-");
        row(AccountStatus::Available, "-CloudKit:User is Logged In-", "");
        row(AccountStatus::Restricted, "-CloudKit:Restricted-", "-iCloud:Cannot Login (Restricted)-");
        row(AccountStatus::NoAccount, "-CloudKit:User is NOT Logged In-", "-iCloud:User is NOT Logged In-");
        QTest::newRow("any other status")
            << int(AccountStatus::TemporarilyUnavailable) << QByteArray("-CloudKit:Cannot Determine Status-")
            << "-iCloud:Cannot Login (Unknown)-";
    }

    void saysWhyTheAccountCannotBeUsed()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, traced);
        QFETCH(QString, message);
        Cloud cloud;
        cloud.container.status = AccountStatus(status);
        cloud.store.setTasks({named("A")});
        const QByteArray traces =
            tracesOf([&] { QCOMPARE(cloud.store.syncToCloudFromLocal(), message.isEmpty()); });
        QVERIFY(kinds(traces).contains(traced));
        QCOMPARE(cloud.store.lastMessage(), message);
        QVERIFY(cloud.told.contains("update"));

        cloud.store.setLastMessage({});
        QCOMPARE(cloud.store.syncToLocalFromCloud(), message.isEmpty());
        if (AccountStatus(status) == AccountStatus::NoAccount)
            QCOMPARE(cloud.store.lastMessage(), QStringLiteral("iCloud:User is NOT Logged In"));
    }

    void ignoresAnErrorOfTheAccountStatus()
    {
        Cloud cloud;
        cloud.container.setScript(
            [](Request request, int) { return request == Request::Status ? Fate::Fail : Fate::Pass; });
        cloud.store.setTasks({named("A")});
        const QByteArray traces = tracesOf([&] { QVERIFY(cloud.store.syncToCloudFromLocal()); });
        QVERIFY(!traces.contains("-CloudKit:User") && !traces.contains("-CloudKit:Cannot"));
        QVERIFY(cloud.told.isEmpty());
    }

    void tracesEachOperation()
    {
        Cloud cloud;
        cloud.store.setTasks({named("A", true)});
        const auto sends = [&] { QVERIFY(cloud.store.syncToCloudFromLocal()); };
        QByteArray first = tracesOf(sends);
        QVERIFY(first.startsWith(
            "Sync To CloudKit, #Tasks: 1\nContainer: " + cloud.container.description().toUtf8() +
            "\nCloudKit Edit - Return Saved: true\n"));
        QVERIFY(first.contains("CloudKit Edit - Record Not Found - Add\nContainer: "));
        QVERIFY(first.contains("Add Task to Cloud, hidden: true\n"));
        QCOMPARE(kinds(tracesOf(sends)).join('\n'),
                 "-CloudKit:Save Success-\n-CloudKit:User is Logged In-\nCloudKit Edit - Return "
                 "Saved\nContainer\nRecord\nSync To CloudKit, #Tasks");

        const QByteArray merging = tracesOf([&] { QVERIFY(cloud.store.syncToLocalFromCloud()); });
        QVERIFY(merging.contains("CloudKit record: Task "));
        QVERIFY(merging.contains("\nSelected: 0\nEdit Task\nSelected Task: A Name of A\n"));

        cloud.container.setScript(
            [](Request request, int) { return request == Request::Save ? Fate::Fail : Fate::Pass; });
        QVERIFY(tracesOf([&] {
                    QVERIFY(!cloud.store.syncToCloudFromLocal());
                }).contains("-CloudKit:Save Error-\n"));
        cloud.container.status = AccountStatus::NoAccount;
        cloud.appearance.setInterfaceStyle(QStringLiteral("Dark"));
        QVERIFY(tracesOf([&] {
                    (void)cloud.store.syncToCloudFromLocal();
                }).contains("Inverted -> Switch to original\nRecord: Task "));
        QVERIFY(tracesOf([&] {
                    (void)cloud.store.syncToLocalFromCloud();
                }).contains("In dark mode -> Invert\nSelected: 0\n"));
    }

    void answersAtOnceWhereNobodyWaits()
    {
        Cloud cloud;
        cloud.container.setScript([](Request, int) { return Fate::Hold; });
        QElapsedTimer time;
        time.start();
        QVERIFY(send(cloud.store, named("A")));
        QVERIFY(cloud.store.deleteTaskToCloud(QStringLiteral("A")));
        QVERIFY(time.elapsed() < 1000);
    }

    void endsInTheMiddleOfASync()
    {
        Cloud cloud;
        cloud.put({named("A")});
        cloud.container.setScript(
            [](Request request, int) { return request == Request::Query ? Fate::Hold : Fate::Pass; });
        QTimer::singleShot(50, QCoreApplication::instance(), [] { QCoreApplication::exit(); });
        QElapsedTimer time;
        time.start();
        QVERIFY(!cloud.store.syncToLocalFromCloud());
        QVERIFY(time.elapsed() < 3000);
    }

    void wrapsADatabaseForTheMainThread_data()
    {
        QTest::addColumn<int>("fate");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("success") << int(Fate::Pass) << "R";
        QTest::newRow("error") << int(Fate::Fail) << "0 scripted";
        QTest::newRow("nothing") << int(Fate::Nothing) << "1 There callback returned a nil object";
    }

    void wrapsADatabaseForTheMainThread()
    {
        QFETCH(int, fate);
        QFETCH(QString, outcome);
        using Controller = TaskManager::CloudKitController;
        Cloud cloud;
        cloud.container.setScript([fate](Request, int) { return Fate(fate); });
        Controller controller(cloud.container);
        QCOMPARE(controller.scope, DatabaseScope::Public);
        QString got;
        controller.save(CloudRecord(taskRecordType(), QStringLiteral("R")), [&](const auto &result) {
            QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
            got = result.success()
                      ? result.success()->recordName()
                      : QStringLiteral("%1 %2").arg(result.failure()->which()).arg(result.failure()->text());
        });
        QVERIFY(got.isEmpty());
        QTRY_COMPARE(got, outcome);
        QVERIFY(cloud.records().isEmpty()); // those of the private database
    }

    void savesTheSharingZone()
    {
        Cloud cloud;
        std::promise<QString> saved;
        cloud.store.createSharingZone([&saved](const auto &zone, const auto &error) {
            saved.set_value(zone && !error ? zone->zoneName : QString());
        });
        QCOMPARE(saved.get_future().get(), QStringLiteral("SharingZone"));
    }

    void tracesWhoHasAPhoneNumber()
    {
        Cloud cloud;
        const QByteArray traces = tracesOf([&cloud] {
            cloud.store.discoverUsersUsingApp(QStringLiteral("+1 555"));
            (void)cloud.records();
            QCoreApplication::processEvents();
        });
        QCOMPARE(traces, "fetch user by phone error  no identity\n");
    }
};

OBLINO_TEST(tst_cloudsync, QCoreApplication)

#include "tst_cloudsync.moc"
