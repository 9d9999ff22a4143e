#include <core/taskmanager.h>
#include <messaging/sendingstate.h>
#include <messaging/smsgateway.h>
#include <platform/appearance.h>
#include <platform/defaults.h>
#include <platform/httpclient.h>
#include <support/httpsserver.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <QElapsedTimer>
#include <QNetworkProxy>

#include <future>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

using End = Reply::End;

const QString secret = u"pass!word:1"_s;

const Certificate &authority()
{
    static const Certificate made = Certificate::authority();
    return made;
}

// The service and an account with it.
struct Account
{
    Account()
    {
        settings.setTwilioSID(u"AC1"_s);
        settings.setTwilioSecret(secret);
        settings.setTwilioSendingPhoneNo(u"+1 555"_s);
        settings.setTestOhoneNo(u"+2&3"_s);
        SendingState::setLastResponse(u"earlier"_s);
    }

    TemporaryHome home;
    Defaults defaults{home.path(u"settings.ini"_s)};
    Appearance appearance;
    TaskManager settings{defaults, appearance};
    HttpsServer server{authority().issue("IP:127.0.0.1")};
    HttpClient client{authority().trust()};
    SmsGateway gateway{settings, client, u"127.0.0.1"_s, server.port()};
};

QByteArray refusal(int status, int code, const QByteArray &message)
{
    return "<?xml version='1.0' encoding='UTF-8'?>\n<TwilioResponse><RestException><Code>" +
           QByteArray::number(code) + "</Code><Detail></Detail><Message>" + message +
           "</Message><MoreInfo>https://www.twilio.com/docs/errors/" + QByteArray::number(code) +
           "</MoreInfo><Status>" + QByteArray::number(status) + "</Status></RestException></TwilioResponse>";
}

QByteArray acceptance(const QByteArray &message)
{
    return "<TwilioResponse><SMSMessage><Sid>SM1</Sid><Body>" + message +
           "</Body><Status>queued</Status></SMSMessage></TwilioResponse>";
}

} // namespace

class tst_smsgateway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }

    void sendsTheFormToTheAccount()
    {
        Account a;
        a.server.setReply({Reply::answer(acceptance("a"))});
        QVERIFY(a.gateway.sendSMS(QString(159, u'a') + u"👍🏽b"_s, u"+49=1"_s));
        a.settings.setOverwrite(true);
        a.settings.setTwilioSID(u"A-._~!$&'()*+,;="_s);
        QVERIFY(a.gateway.sendSMS({}, u"+49=1"_s));
        const QList<Request> requests = a.server.requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests[0].line(), "POST /2010-04-01/Accounts/AC1/SMS/Messages HTTP/1.1");
        QCOMPARE(requests[0].header("Authorization"), "Basic " + ("AC1:" + secret.toUtf8()).toBase64());
        QCOMPARE(requests[0].body,
                 "From=%2B1%20555&To=%2B49%3D1&Body=" + QByteArray(159, 'a') + "%F0%9F%91%8D%F0%9F%8F%BD");
        QCOMPARE(requests[1].line(), "POST /2010-04-01/Accounts/A-._~!$&'()*+,;=/SMS/Messages HTTP/1.1");
        QCOMPARE(requests[1].body, "From=%2B1%20555&To=%2B2%263&Body=");
    }

    void judgesTheAnswerByItsBodyAlone_data()
    {
        const Table<Reply, bool, QString> row;
        const auto judged = [&](const char *name, const char *status, const QByteArray &body, bool success) {
            row(name, {Reply::answer(body, status)}, success,
                success ? u"earlier"_s : QString::fromUtf8(body));
        };
        judged("accepted", "201 Created", acceptance("hello"), true);
        judged("a message with the word", "201 Created", acceptance("terrors"), false);
        judged("a wrong secret", "401 Unauthorized", refusal(401, 20003, "Authenticate"), false);
        judged("a bad number", "400 Bad Request", refusal(400, 21211, "Not valid"), false);
        judged("too long", "400 Bad Request", refusal(400, 21605, "Over 160"), false);
        judged("no such account", "404 Not Found", refusal(404, 20404, "Not found"), false);
        judged("too many", "429 Too Many Requests", refusal(429, 20429, "Too Many"), false);
        judged("the word as a name", "200 OK", "{\"Errors\": 0, \"name\": \"\xC3\xA9\"}", false);
        judged("the word in capitals", "500 Internal Server Error", "ERROR", true);
        judged("nothing", "200 OK", "", true);
        judged("a redirection", "302 Found", "", true);
        row("not UTF-8", {Reply::answer("error \xFF")}, false, u"earlier"_s);
        row("half a character", {Reply::answer("error \xC3")}, false, u"earlier"_s);
        row("no answer", {{}, End::Close}, false, u"earlier"_s);
        row("half an answer", {Reply::answer("error").chopped(1), End::Close}, false, u"earlier"_s);
    }
    void judgesTheAnswerByItsBodyAlone()
    {
        const auto [reply, success, lastResponse] = Table<Reply, bool, QString>::cells();
        Account a;
        a.server.setReply(reply);
        QCOMPARE(a.gateway.sendSMS(u"hello"_s, u"1"_s), success);
        QCOMPARE(SendingState::lastResponse(), lastResponse);
        QCOMPARE(a.server.requests().size(), 1);
    }

    void tracesEveryStepButNotTheSecret_data()
    {
        const Table<QString, Reply, QByteArray> row;
        row("sent", secret, {Reply::answer("fine")},
            "Start Message\nStart Message\nFinished\nResponse: fine\n---Response Does Not Contain Errors---\n"
            "--- Send SMS Success: true ---\n---Send SMS Finished: true ---\n");
        row("refused", secret, {Reply::answer("Error")},
            "Start Message\nStart Message\nFinished\nResponse: Error\n---Response Contains Errors---\n"
            "--- Send SMS Success: false ---\n---Send SMS Finished: true ---\n");
        row("no answer", secret, {{}, End::Close},
            "Start Message\nStart Message\nFinished\nError: \\S.*\n"
            "--- Send SMS Success: false ---\n---Send SMS Finished: true ---\n");
        row("not UTF-8", secret, {Reply::answer("\xFF")},
            "Start Message\nStart Message\nFinished\nError: \\S.*\n"
            "--- Send SMS Success: false ---\n---Send SMS Finished: true ---\n");
        row("no address", secret + u'@', {}, "Start Message\nError: \\S.*\n");
    }
    void tracesEveryStepButNotTheSecret()
    {
        const auto [storedSecret, reply, expected] = Table<QString, Reply, QByteArray>::cells();
        Account a;
        a.settings.setTwilioSecret(storedSecret);
        a.server.setReply(reply);
        const QByteArray traces = tracesOf([&] { a.gateway.sendSMS(u"hello"_s, u"1"_s); });
        const QRegularExpression lines(QRegularExpression::anchoredPattern(QString::fromUtf8(expected)));
        QVERIFY2(lines.match(QString::fromUtf8(traces)).hasMatch(), traces.constData());
        QVERIFY(!traces.contains("pass!word") && !traces.contains(("AC1:" + secret.toUtf8()).toBase64()));
    }

    void sendsNothingToAnAddressThatCannotBe()
    {
        Account a;
        a.server.setReply({Reply::answer("fine")});
        a.settings.setDelay(3'600'000);
        a.settings.setTwilioSecret(u"a\r\nX: y"_s);
        QVERIFY(!a.gateway.sendSMS(u"hello"_s, u"1"_s));
        QCOMPARE(a.server.connections(), 0);
        QCOMPARE(SendingState::lastResponse(), u"earlier"_s);
    }

    void pausesAfterTheAnswer_data()
    {
        const Table<qint64, bool, qint64> row;
        row("after a success", 300, true, 300);
        row("after a failure", 300, false, 300);
        row("below nothing", -3'600'000, true, 0);
    }
    void pausesAfterTheAnswer()
    {
        const auto [delay, success, atLeast] = Table<qint64, bool, qint64>::cells();
        Account a;
        a.settings.setDelay(delay);
        a.server.setReply({Reply::answer(success ? "fine" : "error")});
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(a.gateway.sendSMS(u"hello"_s, u"1"_s), success);
        QVERIFY(timer.elapsed() >= atLeast);
    }

    void endsAtOnceWhenItIsStopped_data()
    {
        const Table<Reply, QString> row;
        row("in the pause", {Reply::answer("error")}, u"error"_s);
        row("before the answer", {}, u"earlier"_s);
    }
    void endsAtOnceWhenItIsStopped()
    {
        const auto [reply, lastResponse] = Table<Reply, QString>::cells();
        Account a;
        a.server.setReply(reply);
        a.settings.setDelay(3'600'000);
        auto sent = std::async(std::launch::async, [&a] { return a.gateway.sendSMS(u"hello"_s, u"1"_s); });
        QTRY_COMPARE(a.server.requests().size(), 1);
        QTRY_COMPARE(SendingState::lastResponse(), lastResponse);
        QElapsedTimer timer;
        timer.start();
        a.gateway.stop();
        QVERIFY(!sent.get());
        QVERIFY(!a.gateway.sendSMS(u"hello"_s, u"1"_s));
        QVERIFY2(timer.elapsed() < 1000, QByteArray::number(timer.elapsed()).constData());
        QCOMPARE(a.server.requests().size(), 1);
    }

    void hasOneGatewayForTheApplication()
    {
        smsGateway().stop();
        QVERIFY(!sendSMS(u"hello"_s, u"1"_s));
    }
};

OBLINO_TEST(tst_smsgateway, QCoreApplication)

#include "tst_smsgateway.moc"
