#include <messaging/httpclient.h>
#include <messaging/sendingstate.h>
#include <messaging/smsgateway.h>
#include <messaging/smsmessage.h>
#include <support/httpsserver.h>
#include <support/store.h>
#include <support/test.h>

using Answers = Table<Reply, bool, QString, QByteArray>;

namespace {

const QString secret = u"pass!word:1"_s;

// The service and an account with it.
struct Account : Store
{
    Account()
    {
        store.setTwilioSID(u"AC1"_s);
        store.setTwilioSecret(secret);
        store.setTwilioSendingPhoneNo(u"+1 555"_s);
        store.setTestOhoneNo(u"+2&3"_s);
        SendingState::setLastResponse(u"earlier"_s);
    }

    bool send(const QString &message = u"hello"_s) { return gateway.sendSMS(message, u"+49=1"_s); }

    HttpsServer server;
    HttpClient client{Certificate::loopback().trust()};
    SmsGateway gateway{store, client, u"127.0.0.1"_s, server.port()};
};

} // namespace

class tst_smsgateway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsTheFormToTheAccount()
    {
        Account a;
        a.server.setReply({Reply::answer("fine")});
        QVERIFY(a.send(QString(158, u'a') + u"👍🏽&b"_s));
        a.store.setOverwrite(true);
        a.store.setTwilioSID(u"A-._~!$&'()*+,;="_s);
        QVERIFY(a.send(u"é%41+\n\r"_s));
        const QList<Request> requests = a.server.requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests[0].line(), "POST /2010-04-01/Accounts/AC1/SMS/Messages HTTP/1.1");
        QCOMPARE(requests[0].header("Authorization"), "Basic " + ("AC1:" + secret.toUtf8()).toBase64());
        QCOMPARE(requests[0].body,
                 "From=%2B1%20555&To=%2B49%3D1&Body=" + QByteArray(158, 'a') + "%F0%9F%91%8D%F0%9F%8F%BD%26");
        QCOMPARE(requests[1].line(), "POST /2010-04-01/Accounts/A-._~!$&'()*+,;=/SMS/Messages HTTP/1.1");
        QCOMPARE(requests[1].body, "From=%2B1%20555&To=%2B2%263&Body=%C3%A9%2541%2B%0A%0D");
    }

    void judgesAndTracesTheAnswerByItsBodyAlone_data()
    {
        const Answers row;
        const QByteArray good = "---Response Does Not Contain Errors---\n";
        const QByteArray bad = "---Response Contains Errors---\n";
        const QByteArray refusal = "<Status>401</Status><MoreInfo>https://t/errors/20003</MoreInfo>";
        row("accepted", {Reply::answer("fine", "201 Created")}, true, u"earlier"_s,
            "Response: fine\n" + good);
        row("refused", {Reply::answer(refusal, "401 Unauthorized")}, false, QString::fromUtf8(refusal),
            "Response: " + refusal + '\n' + bad);
        row("a message with the word", {Reply::answer("terrors")}, false, u"terrors"_s,
            "Response: terrors\n" + bad);
        row("the word in capitals", {Reply::answer("ERROR", "500 Internal Server Error")}, true, u"earlier"_s,
            "Response: ERROR\n" + good);
        for (const QByteArray status :
             {"307 Temporary Redirect", "308 Permanent Redirect", "401 Unauthorized",
              "407 Proxy Authentication Required", "502 Bad Gateway"}) {
            const QByteArray headers =
                "Location: https://127.0.0.1/\r\nProxy-Authenticate: Basic realm=\"a\"\r\n";
            row(status + " of no body", {Reply::answer({}, status, headers)}, true, u"earlier"_s,
                "Response: \n" + good);
            row(status, {Reply::answer("moved", status, headers)}, true, u"earlier"_s,
                "Response: moved\n" + good);
            row(status + " with the word", {Reply::answer("an error", status, headers)}, false, u"an error"_s,
                "Response: an error\n" + bad);
        }
        row("not UTF-8", {Reply::answer("error \xFF")}, false, u"earlier"_s, "Error: \\S.*\n");
        row("half an answer", {Reply::answer("error").chopped(1), Reply::End::Close}, false, u"earlier"_s,
            "Error: \\S.*\n");
    }
    void judgesAndTracesTheAnswerByItsBodyAlone()
    {
        const auto [reply, success, lastResponse, trace] = Answers::cells();
        Account a;
        a.server.setReply(reply);
        const QByteArray traces = tracesOf([&, success = success] { QCOMPARE(a.send(), success); });
        QCOMPARE(SendingState::lastResponse(), lastResponse);
        QCOMPARE(a.server.requests().size(), 1);
        const QRegularExpression lines(QRegularExpression::anchoredPattern(
            QString::fromUtf8("Start Message\nStart Message\nFinished\n" + trace + "--- Send SMS Success: " +
                              (success ? "true" : "false") + " ---\n---Send SMS Finished: true ---\n")));
        QVERIFY2(lines.match(QString::fromUtf8(traces)).hasMatch(), traces.constData());
        QVERIFY(!traces.contains("pass!word") && !traces.contains(("AC1:" + secret.toUtf8()).toBase64()));
    }

    // The rules of both are those of Unicode 14 and 15, but for conjuncts, which Perl's do not join yet.
    void cutsAndCountsCharactersAsPerlDoes()
    {
        const QStringList atoms =
            u"a|é|\u0301|\u200D|\uFE0F|❤|😀|👩|🚀|🏽|🇩|🇪|ᄀ|ᅡ|ᆨ|가|क|\u0947|ก|"
            u"\u0E33|"
            u"က|"
            "\u1039|ក|\u17D2|བ|\u0F71|ব|\u0600|\r|\n"_s.split(u'|');
        QStringList texts;
        for (const QString &first : atoms) {
            for (const QString &second : atoms) {
                for (const QString &third : atoms)
                    texts += QString(158, u'x') + first + second + third + u'!';
            }
        }
        QProcess perl;
        perl.start(u"perl"_s,
                   {u"-CS"_s, u"-0ne"_s, u"chomp; my $n = () = /\\X/g; /^\\X{0,160}/; print qq($n $&\\0)"_s});
        if (!perl.waitForStarted())
            QSKIP("perl is not installed");
        perl.write(texts.join(QChar(0)).toUtf8());
        perl.closeWriteChannel();
        QVERIFY(perl.waitForFinished());
        const QStringList expected = QString::fromUtf8(perl.readAllStandardOutput()).split(QChar(0));
        QCOMPARE(expected.size(), texts.size() + 1); // after the last one, too, stands a NUL
        for (qsizetype i = 0; i < texts.size(); ++i)
            QCOMPARE(QString::number(characterCount(texts[i])) + u' ' + smsText(texts[i]), expected[i]);
    }

    void sendsNothingToAnAddressThatCannotBe()
    {
        Account a;
        a.store.setDelay(300);
        a.store.setTwilioSecret(secret + u"\r\nX: y"_s);
        const QDeadlineTimer earliest(300);
        const QByteArray traces = tracesOf([&a] { QVERIFY(!a.send()); });
        QVERIFY(earliest.hasExpired());
        QCOMPARE(traces, "Start Message\nError: " + SendingState::lastFailure().toUtf8() +
                             "\n--- Send SMS Success: false ---\n---Send SMS Finished: false ---\n");
        QVERIFY(!SendingState::lastFailure().isEmpty() && !traces.contains("pass!word"));
        QCOMPARE(SendingState::lastResponse(), u"earlier"_s);
        QCOMPARE(a.server.connections(), 0);
        for (const char *sid : {".", "..", "a:b"})
            QVERIFY2(!smsUrl(u"h"_s, 443, QLatin1String(sid), {}), sid);
        for (const QChar c : u"@/?#[] %\\\"<>^`{|}\r\n\x7Fé\u0661"_s + QChar(0))
            QVERIFY2(!smsUrl(u"h"_s, 443, u"a"_s + c, {}) && !smsUrl(u"h"_s, 443, u"a"_s, c + u"b"_s),
                     qPrintable(QString(c)));
    }

    void pausesAfterAnAnswerOfEitherKind()
    {
        Account a;
        a.store.setDelay(300);
        const QDeadlineTimer earliest(600);
        for (const char *answer : {"fine", "error"}) {
            a.server.setReply({Reply::answer(answer)});
            (void)a.send();
        }
        QVERIFY(earliest.hasExpired());
    }

    void endsAtOnceWhenItIsStopped()
    {
        for (const bool answers : {true, false}) { // which is in the pause, or before the answer
            Account a;
            a.server.setReply(answers ? Reply{Reply::answer("error")} : Reply());
            a.store.setDelay(3'600'000);
            auto sent = std::async(std::launch::async, [&a] { return a.send(); });
            QTRY_COMPARE(a.server.requests().size(), 1);
            QTRY_COMPARE(SendingState::lastResponse(), answers ? u"error"_s : u"earlier"_s);
            const QDeadlineTimer latest(1000);
            a.gateway.stop();
            QVERIFY(!sent.get());
            QVERIFY(!a.send());
            QVERIFY(!latest.hasExpired());
            QCOMPARE(a.server.requests().size(), 1);
        }
    }
};

OBLINO_TEST(tst_smsgateway, QCoreApplication)

#include "tst_smsgateway.moc"
