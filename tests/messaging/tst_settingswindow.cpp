#include <messaging/httpclient.h>
#include <messaging/sendingstate.h>
#include <messaging/smsgateway.h>
#include <messaging/windows/viewcontrollersettings.h>
#include <support/httpsserver.h>
#include <support/store.h>
#include <support/test.h>
#include <support/widgets.h>
#include <ui/uiutil.h>

namespace {

constexpr std::pair<const char *, const char *> fields[] = {
    {"secureID", "twilioSID"},
    {"passPhrase", "twillioSecret"},
    {"sendingPhoneNo", "twillioSendingPhoneNo"},
    {"messageTitle", "twillioMessageTitle"},
    {"testPhoneNo", "twillioTestPhoneNo"},
    {"messageFooter", "twillioMessageFooter"},
};

/// The window, shown, driven by real events.
struct Window : Store
{
    Window() { reopen(); }

    void reopen()
    {
        window.close();
        showActive(window);
    }

    [[nodiscard]] QLineEdit &field(const char *name) const { return find<QLineEdit>(window, name); }
    [[nodiscard]] QString label(const char *name) const { return find<QLabel>(window, name).text(); }
    void type(const char *name, const QString &text) const
    {
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), text);
    }
    void click(const char *name) const { oblino::click(window, name); }

    /// Fills in the whole form: the texts with their keys, and both switches.
    void fill()
    {
        for (const auto &[name, key] : fields)
            type(name, u" my "_s + QLatin1String(key));
        click("sendSMS");
        click("overwritePhoneNo");
        type("delayMS", u"1500"_s);
    }
    [[nodiscard]] QString stored() const
    {
        QString texts;
        for (const auto &[name, key] : fields)
            texts += defaults.text(QLatin1String(key)).value_or(QString()) + u'|';
        for (const auto &key : {u"twillioNotifications"_s, u"twillioOverwrite"_s})
            texts += QString::number(defaults.boolean(key)) + u'|';
        return texts + QString::number(defaults.integer(u"twillioDelay"_s));
    }

    ScriptedAlert::Script script;
    UIUtil utilities{std::make_unique<ScriptedAlert>(script)};
    ViewControllerSettings::Send send = [](const QString &, const QString &) { return true; };
    ViewControllerSettings window{
        store, utilities, [this](const QString &message, const QString &to) { return send(message, to); }};
};

const QString filled = u" my twilioSID| my twillioSecret| my twillioSendingPhoneNo| my twillioMessageTitle|"
                       " my twillioTestPhoneNo| my twillioMessageFooter|1|1|1500"_s;

} // namespace

class tst_settingswindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesWhatIsTypedWithoutTellingTheSecret()
    {
        Window w;
        QCOMPARE(namelessIn(w.window), QString());
        QCOMPARE(w.label("missingLabel"),
                 u"Sending schedules still needs the account SID, the secret, the sending "
                 "number, the switch that allows sending."_s);
        const QByteArray traces = tracesOf([&w] {
            w.fill();
            QCOMPARE(w.label("missingLabel"), u"Nothing is missing: schedules can be sent."_s);
            w.click("testButton");
            QTest::keyClick(&w.field("delayMS"), Qt::Key_Return);
        });
        QVERIFY(!w.window.isVisible());
        QCOMPARE(w.stored(), filled);
        QVERIFY2(!traces.contains("my twillioSecret"), traces.constData());
    }

    void sendsATestMessageWithWhatTheFormShows_data()
    {
        const Table<Reply, QString> row;
        row("accepted", {Reply::answer("fine")}, u"Test Message sent to: +49 1"_s);
        row("refused", {Reply::answer("<Error>")}, u"Error sending test message\n<Error>"_s);
        row("not answered", {{}, Reply::End::Close},
            u"Error sending test message\nThe server closed the connection without a whole answer."_s);
    }
    void sendsATestMessageWithWhatTheFormShows()
    {
        const auto [reply, told] = Table<Reply, QString>::cells();
        HttpsServer server;
        HttpClient client(Certificate::loopback().trust());
        Window w;
        SmsGateway gateway(w.store, client, u"127.0.0.1"_s, server.port());
        w.send = [&gateway](const QString &message, const QString &to) {
            return gateway.sendSMS(message, to);
        };
        SendingState::setLastResponse(u"of an earlier message"_s);
        SendingState::setLastFailure(u"of an earlier message"_s);
        w.type("testPhoneNo", u" +49 1"_s);
        w.type("passPhrase", u"new"_s);
        server.setReply(reply);
        w.click("testButton");
        QCOMPARE(server.requests().size(), 1); // with the switch off
        QCOMPARE(server.requests()[0].header("Authorization"), "Basic " + ":new"_ba.toBase64());
        QCOMPARE(server.requests()[0].body, "From=&To=%20%2B49%201&Body=Test");
        QCOMPARE(w.script.asked.size(), 1);
        QCOMPARE(w.script.asked[0].informativeText, told);
        QVERIFY(w.window.isVisible());
    }
};

OBLINO_TEST(tst_settingswindow, QApplication)

#include "tst_settingswindow.moc"
