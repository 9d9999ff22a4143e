#include "scriptedgateway.h"

#include <core/taskmanager.h>
#include <messaging/sendingrun.h>
#include <messaging/sendingstate.h>
#include <messaging/smsgateway.h>
#include <platform/appearance.h>
#include <platform/defaults.h>
#include <platform/httpclient.h>
#include <support/httpsserver.h>
#include <support/lateness.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QUrl>

#include <ctime>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Kind = SendingJob::Kind;

namespace {

QDateTime at(int day)
{
    return QDate(2026, 3, day).startOfDay();
}

task taskOn(int day, const QString &name, const QString &client, const QString &member)
{
    return {.date = at(day), .name = name, .client = client, .teamMember = member, .due = at(day)};
}

SendingJob jobOf(Kind kind)
{
    SendingJob job = {
        .kind = kind,
        .tasks = {taskOn(3, u"a"_s, u"ACME"_s, u"Dana"_s), taskOn(4, u"b"_s, u"Bolt"_s, u"Dana"_s),
                  taskOn(5, u"c"_s, u"ACME"_s, u"Bo"_s), taskOn(6, u"d"_s, u"ACME"_s, u"Dana"_s)},
        .terms = {.rangeStart = at(3),
                  .rangeEnd = at(5),
                  .title = u"T"_s,
                  .footer = u"F"_s,
                  .shortDate = [](const QDateTime &day) { return day.toString(u"d"_s); }},
        .text = u"hello"_s};
    if (kind != Kind::TeamMemberSchedules)
        job.clients = {{u"acme"_s, u"1"_s}, {u"Nobody"_s, u"2"_s}, {u"Bolt"_s, {}}};
    if (kind != Kind::ClientSchedules)
        job.teamMembers = {{u"Dana"_s, u"7"_s}};
    return job;
}

/// A run through a gateway, and what it tells.
struct Run
{
    Run()
    {
        SendingState::success = true;
        QObject::connect(&run, &SendingRun::progressed, &run, [this] {
            progress += run.job().progressText(SendingState::progressIndex, SendingState::noOfSchedules);
        });
        QObject::connect(&run, &SendingRun::finished, &run, [this] {
            done += run.job().doneText(SendingState::progressIndex, SendingState::noOfSchedules);
        });
    }
    ~Run() { gateway.allow(ScriptedGateway::all); }

    ScriptedGateway gateway;
    QStringList progress;
    QStringList done;
    SendingRun run{gateway.calls()};
};

/// The real gateway on a server of a test's own.
struct Service
{
    explicit Service(qint64 delay = 0)
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        settings.setTwilioSID(u"AC1"_s);
        settings.setDelay(delay);
    }

    [[nodiscard]] SendingRun::Gateway calls()
    {
        return {.isOn = [this] { return settings.getNotification(); },
                .send = [this](const QString &message,
                               const QString &to) { return gateway.sendSMS(message, to); }};
    }

    TemporaryHome home;
    Defaults defaults{home.path(u"settings.ini"_s)};
    Appearance appearance;
    TaskManager settings{defaults, appearance};
    Certificate authority = Certificate::authority();
    HttpsServer server{authority.issue("IP:127.0.0.1")};
    HttpClient client{authority.trust()};
    SmsGateway gateway{settings, client, u"127.0.0.1"_s, server.port()};
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true; // which takes memory of its own
#else
constexpr bool isSanitized = false;
#endif

qint64 processorTime() // in milliseconds
{
    timespec used = {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return used.tv_sec * 1000LL + used.tv_nsec / 1'000'000;
}

qint64 residentBytes()
{
    return TemporaryHome::content(u"/proc/self/statm"_s).split(' ').value(1).toLongLong() *
           ::sysconf(_SC_PAGESIZE);
}

} // namespace

class tst_sendingrun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsInOrderAndTellsHowFarItIs_data()
    {
        const Table<Kind, qsizetype, QStringList, QString, QString> row;
        const QStringList clients = {u"1:T Client Schedule: ACME 3-5"_s,
                                     u"1:3 08:00AM-3 05:00PM a-Dana"_s,
                                     u"1:5 08:00AM-5 05:00PM c-Bo"_s,
                                     u"1:F"_s,
                                     u":T Client Schedule: Bolt 3-5"_s,
                                     u":4 08:00AM-4 05:00PM b-Dana"_s,
                                     u":F"_s};
        const QString clientsProgress = u"Steps Performed:12 of 12 Sending Schedule#:3"_s;
        const QString clientsDone = u"Steps Performed:12 Schedules#:3"_s;
        row("clients", Kind::ClientSchedules, ScriptedGateway::all, clients, clientsProgress, clientsDone);
        row("switched off", Kind::ClientSchedules, 0, {}, clientsProgress, clientsDone);
        row("switched off after two", Kind::ClientSchedules, 2, clients.first(2), clientsProgress,
            clientsDone);
        row("team members", Kind::TeamMemberSchedules, ScriptedGateway::all,
            {u"7:T Team Member Schedule: Dana 3-5"_s, u"7:3 08:00AM-3 05:00PM a-ACME"_s,
             u"7:4 08:00AM-4 05:00PM b-Bolt"_s, u"7:F"_s},
            u"Steps Performed:4 of 4 Sending Schedule#:2"_s, u"Steps Performed:4 Schedules:2"_s);
        row("one text, whatever the switch says", Kind::FreeText, 0,
            {u"1:hello"_s, u"2:hello"_s, u":hello"_s, u"7:hello"_s},
            u"Performing Step#:4 Sending Message#:4"_s, u"Performing Step#:4 Sending Message#:4"_s);
    }
    void sendsInOrderAndTellsHowFarItIs()
    {
        const auto [kind, on, sent, progress, done] =
            Table<Kind, qsizetype, QStringList, QString, QString>::cells();
        Run r;
        r.gateway.setOn(on);
        r.run.start(jobOf(kind));
        QVERIFY(r.run.isRunning());
        QTRY_COMPARE(r.done, QStringList(done));
        QVERIFY(!r.run.isRunning());
        QCOMPARE(r.gateway.sent(), sent);
        QCOMPARE(r.progress.last(), progress);
        QVERIFY(SendingState::success);
    }

    void tellsOnlyWhetherTheLastMessageWentThrough_data()
    {
        const Table<Kind, QList<qsizetype>, bool> row;
        row("an earlier schedule line failed", Kind::TeamMemberSchedules, {0, 1, 2}, true);
        row("the last footer failed", Kind::TeamMemberSchedules, {3}, false);
        row("earlier texts failed", Kind::FreeText, {0, 1, 2}, true);
        row("the last text failed", Kind::FreeText, {3}, false);
    }
    void tellsOnlyWhetherTheLastMessageWentThrough()
    {
        const auto [kind, failing, success] = Table<Kind, QList<qsizetype>, bool>::cells();
        Run r;
        r.gateway.fail(failing);
        r.run.start(jobOf(kind));
        QTRY_COMPARE(r.done.size(), 1);
        QCOMPARE(r.gateway.sent().size(), 4);
        QCOMPARE(SendingState::success.load(), success);
    }

    void makesOnePassWithoutTasks()
    {
        Run r;
        SendingJob job = jobOf(Kind::ClientSchedules);
        job.tasks.clear();
        SendingState::progressIndex = SendingState::noOfSchedules = 9;
        r.run.start(job);
        QTRY_COMPARE(r.done, QStringList(u"Steps Performed:0 Schedules#:0"_s));
        QCOMPARE(r.progress, QStringList(u"Steps Performed:0 of 0 Sending Schedule#:0"_s));
        QCOMPARE(r.gateway.sent(), QStringList());
    }

    void endsAfterTheLastMessageOfWhatWasThereAtTheStart()
    {
        Run r;
        r.gateway.allow(3);
        SendingJob job = jobOf(Kind::TeamMemberSchedules);
        r.run.start(job);
        job.tasks.clear();
        job.teamMembers.clear();
        QTRY_COMPARE(r.gateway.sent().size(), 4);
        const qsizetype told = r.progress.size();
        QTRY_VERIFY(r.progress.size() > told);
        QCOMPARE(r.progress.last(), u"Steps Performed:4 of 4 Sending Schedule#:2"_s);
        QVERIFY(r.run.isRunning() && r.done.isEmpty());
        r.gateway.allow(ScriptedGateway::all);
        QTRY_COMPARE(r.done.size(), 1);
    }

    void tellsOfProgressThirtyTimesASecondAtLittleCost()
    {
        Run r;
        r.gateway.allow(0);
        QElapsedTimer timer;
        timer.start();
        const qint64 used = processorTime();
        r.run.start(jobOf(Kind::FreeText));
        constexpr qsizetype passes = 30;
        QTRY_VERIFY(r.progress.size() >= passes);
        const qint64 elapsed = timer.elapsed();
        QVERIFY2(elapsed > 900 && elapsed < 4000, QByteArray::number(elapsed).constData());
        QVERIFY2(processorTime() - used < elapsed / 4,
                 QByteArray::number(processorTime() - used).constData());
    }

    void startsAgainRightAtItsEnd()
    {
        Run r;
        SendingJob second = jobOf(Kind::FreeText);
        second.text = u"again"_s;
        connect(&r.run, &SendingRun::finished, &r.run, [&] {
            if (r.done.size() == 1)
                r.run.start(second);
        });
        r.run.start(jobOf(Kind::TeamMemberSchedules));
        QTRY_COMPARE(r.done, (QStringList{u"Steps Performed:4 Schedules:2"_s,
                                          u"Performing Step#:4 Sending Message#:4"_s}));
        QCOMPARE(r.gateway.sent().mid(3),
                 (QStringList{u"7:F"_s, u"1:again"_s, u"2:again"_s, u":again"_s, u"7:again"_s}));
    }

    void sendsNothingMoreOnceItIsStopped_data()
    {
        const Table<Kind> row;
        row("schedules", Kind::ClientSchedules);
        row("one text", Kind::FreeText);
    }
    void sendsNothingMoreOnceItIsStopped()
    {
        const auto [kind] = Table<Kind>::cells();
        Run r;
        r.gateway.allow(0);
        r.run.start(jobOf(kind));
        QTRY_COMPARE(r.gateway.sent().size(), 1);
        r.run.stop();
        r.gateway.allow(ScriptedGateway::all);
        QTRY_COMPARE(r.done.size(), 1);
        QCOMPARE(r.gateway.sent().size(), 1);
    }

    void goesSoonAfterTheGatewayIsStopped_data()
    {
        const Table<Reply> row;
        row("before an answer", {});
        row("in the pause", {Reply::answer("fine")});
    }
    void goesSoonAfterTheGatewayIsStopped()
    {
        const auto [reply] = Table<Reply>::cells();
        Service service(3'600'000);
        service.server.setReply(reply);
        int told = 0;
        auto run = std::make_unique<SendingRun>(service.calls());
        connect(run.get(), &SendingRun::progressed, this, [&told] { ++told; });
        connect(run.get(), &SendingRun::finished, this, [&told] { ++told; });
        run->start(jobOf(Kind::FreeText));
        QTRY_COMPARE(service.server.requests().size(), 1);
        QTRY_VERIFY(told > 0);
        QElapsedTimer timer;
        timer.start();
        service.gateway.stop();
        run.reset();
        QVERIFY2(timer.elapsed() < 1000, QByteArray::number(timer.elapsed()).constData());
        const int before = told;
        QCoreApplication::processEvents();
        QCOMPARE(told, before);
        QCOMPARE(service.server.requests().size(), 1);
    }

    void tracesWhatTheMonitorSees()
    {
        Run r;
        const QByteArray traces = tracesOf([&r] {
            r.run.start(jobOf(Kind::FreeText));
            QTRY_COMPARE(r.done.size(), 1);
        });
        for (const char *line : {"row value: acme\nrow value: 1\nSending messages ...\nrow value: Nobody\n",
                                 "--------------------ASYNC--------------------------: 4\n"
                                 "Progres Index: 4 Max Count: 4\n---Out of loop!---\n",
                                 "Success: true\n"})
            QVERIFY2(traces.contains(line), traces.constData());
    }

    void sendsManyExactlyOnceWhileTheLoopGoesOn()
    {
        constexpr int recipients = 10'000;
        constexpr qint64 mostBytes = 50'000'000;
        // Other load on the machine holds this loop up as well; by itself it is hardly ever 50 ms late.
        constexpr qint64 latest = isSanitized ? 1000 : 250;
        Service service;
        service.server.setReply({Reply::answer("fine")});
        SendingJob job = {.text = u"hello"_s};
        QByteArrayList expected;
        for (int i = 0; i < recipients; ++i) {
            job.clients += {{}, QString::number(i)};
            expected += "From=&To=" + QByteArray::number(i) + "&Body=hello";
        }
        SendingRun run(service.calls());
        const qint64 bytes = residentBytes();
        const Lateness lateness;
        run.start(job);
        QTRY_VERIFY_WITH_TIMEOUT(!run.isRunning(), 30'000);
        const qint64 worst = lateness.worst();
        const qint64 grown = residentBytes() - bytes;
        qInfo("at most %lld ms late, %lld bytes more", worst, grown);
        QByteArrayList arrived;
        for (const Request &request : service.server.requests())
            arrived += request.body;
        QVERIFY(arrived == expected);
        QVERIFY2(worst < latest, QByteArray::number(worst).constData());
        QVERIFY2(grown < mostBytes || isSanitized, QByteArray::number(grown).constData());
    }
};

OBLINO_TEST(tst_sendingrun, QCoreApplication)

#include "tst_sendingrun.moc"
