#include <core/taskmanager.h>
#include <messaging/sendingstate.h>
#include <messaging/windows/viewcontrollersettings.h>
#include <platform/appearance.h>
#include <platform/defaults.h>
#include <support/scriptedalert.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>
#include <ui/uiutil.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <sys/stat.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList fields = {u"secureID"_s,     u"passPhrase"_s,  u"sendingPhoneNo"_s,
                            u"messageTitle"_s, u"testPhoneNo"_s, u"messageFooter"_s};

/// The window, shown, driven by real events.
struct Window
{
    Window() { show(); }

    void show()
    {
        window.show();
        window.activateWindow();
        (void)QTest::qWaitForWindowActive(&window);
    }

    [[nodiscard]] QLineEdit &field(const QString &name) const { return *window.findChild<QLineEdit *>(name); }
    [[nodiscard]] QString label(const char *name) const
    {
        return window.findChild<QLabel *>(QLatin1String(name))->text();
    }
    void type(const QString &name, const QString &text) const
    {
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), text);
    }
    void click(const char *name) const
    {
        auto *button = window.findChild<QAbstractButton *>(QLatin1String(name));
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }

    void store(const QStringList &texts, bool isOn, bool overwrites, qint64 delay)
    {
        settings.setTwilioSID(texts[0]);
        settings.setTwilioSecret(texts[1]);
        settings.setTwilioSendingPhoneNo(texts[2]);
        settings.setMessageTitle(texts[3]);
        settings.setTestOhoneNo(texts[4]);
        settings.setMessageFooter(texts[5]);
        settings.setNotification(isOn);
        settings.setOverwrite(overwrites);
        settings.setDelay(delay);
    }
    [[nodiscard]] QStringList stored() const
    {
        return {settings.getTwilioSID(),
                settings.getTwilioSecret(),
                settings.getTwilioSendingPhoneNo(),
                settings.getMessageTitle(),
                settings.getTestPhoneNo(),
                settings.getMessageFooter(),
                settings.getNotification() ? u"on"_s : u"off"_s,
                settings.getOverwrite() ? u"on"_s : u"off"_s,
                QString::number(settings.getDelay())};
    }
    [[nodiscard]] QStringList shown() const
    {
        QStringList texts;
        for (const QString &name : fields)
            texts += field(name).text();
        for (const char *name : {"sendSMS", "overwritePhoneNo"})
            texts += window.findChild<QCheckBox *>(QLatin1String(name))->isChecked() ? u"on"_s : u"off"_s;
        return texts << field(u"delayMS"_s).text();
    }

    TemporaryHome home;
    QString file = home.path(u"settings.ini"_s);
    Defaults defaults{file};
    Appearance appearance;
    TaskManager settings{defaults, appearance};
    ScriptedAlert::Script script;
    UIUtil utilities{std::make_unique<ScriptedAlert>(script)};
    bool sends = true;
    QStringList sent; ///< each with the secret that was stored at that moment
    ViewControllerSettings window{settings, utilities, [this](const QString &message, const QString &to) {
                                      sent += to + u':' + message + u' ' + settings.getTwilioSecret();
                                      return sends;
                                  }};
};

const QStringList blank = {{}, {}, {}, {}, {}, {}, u"off"_s, u"off"_s, u"0"_s};

} // namespace

class tst_settingswindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatIsStored()
    {
        Window w;
        QCOMPARE(w.window.minimumSize(), QSize(478, 408));
        QCOMPARE(w.shown(), blank);
        const QString longText(40'000, u'x');
        w.store({u" AC1 "_s, u"s\u00e9cret"_s, u"+1"_s, u"a\nb"_s, longText, u"\U0001F600"_s}, true, true,
                250);
        w.window.close();
        w.show();
        QCOMPARE(w.shown(), w.stored());
        w.click("saveButton");
        QCOMPARE(w.stored(), (QStringList{u" AC1 "_s, u"s\u00e9cret"_s, u"+1"_s, u"a\nb"_s, longText,
                                          u"\U0001F600"_s, u"on"_s, u"on"_s, u"250"_s}));
    }

    void storesWhatIsTypedWithoutTellingTheSecret()
    {
        Window w;
        const QByteArray traces = tracesOf([&w] {
            for (const QString &name : fields)
                w.type(name, u" my "_s + name);
            w.click("sendSMS");
            w.click("overwritePhoneNo");
            w.type(u"delayMS"_s, u"1500"_s);
            w.click("testButton");
            QTest::keyClick(&w.field(u"delayMS"_s), Qt::Key_Return);
        });
        QVERIFY(!w.window.isVisible());
        QCOMPARE(w.stored(), (QStringList{u" my secureID"_s, u" my passPhrase"_s, u" my sendingPhoneNo"_s,
                                          u" my messageTitle"_s, u" my testPhoneNo"_s, u" my messageFooter"_s,
                                          u"on"_s, u"on"_s, u"1500"_s}));
        QVERIFY(w.defaults.save());
        QVERIFY(TemporaryHome::content(w.file).contains("my passPhrase"));
        struct stat status = {};
        QCOMPARE(::stat(qPrintable(w.file), &status), 0);
        QCOMPARE(status.st_mode & 0777, 0600U);
        QVERIFY2(!traces.contains("my passPhrase"), traces.constData());
    }

    void readsTheNumberThatThePauseBeginsWith_data()
    {
        const Table<QString, qint64, QString> row;
        row("letters after", u"1500abc"_s, 1500, u"counts as 1500 ms"_s);
        row("letters", u"abc"_s, 0, u"counts as 0 ms"_s);
        row("nothing", {}, 0, u"counts as 0 ms"_s);
        row("a sign alone", u"-"_s, 0, u"counts as 0 ms"_s);
        row("below 0", u"-5"_s, -5, u"counts as 0 ms"_s);
        row("blanks before", u"  12"_s, 12, u"ms after each message"_s);
        row("blanks after a sign", u"- 5"_s, 0, u"counts as 0 ms"_s);
        row("plus", u"+7"_s, 7, u"counts as 7 ms"_s);
        row("a fraction", u"2.9"_s, 2, u"counts as 2 ms"_s);
        row("leading zeros", u"000000000000250"_s, 250, u"counts as 250 ms"_s);
        row("the longest pause", u"4294967"_s, 4'294'967, u"ms after each message"_s);
        row("longer", u"4294968"_s, 4'294'968, u"counts as 4294967 ms"_s);
        row("the last of 32 bits", u"2147483647"_s, 2147483647, u"counts as 4294967 ms"_s);
        row("more than 32 bits", u"2147483648"_s, 2147483647, u"counts as 4294967 ms"_s);
        row("more than 64 bits", u"99999999999999999999"_s, 2147483647, u"counts as 4294967 ms"_s);
        row("less than 32 bits", u"-99999999999"_s, -2147483648LL, u"counts as 0 ms"_s);
    }
    void readsTheNumberThatThePauseBeginsWith()
    {
        const auto [text, stored, hint] = Table<QString, qint64, QString>::cells();
        Window w;
        w.type(u"delayMS"_s, text);
        QCOMPARE(w.label("delayHint"), hint);
        w.click("saveButton");
        QCOMPARE(w.settings.getDelay(), stored);
    }

    void forgetsWhatIsNotSaved_data()
    {
        using Act = std::function<void(Window &)>;
        const Table<Act> row;
        row("Escape", [](Window &w) { QTest::keyClick(&w.field(u"secureID"_s), Qt::Key_Escape); });
        row("Cancel", [](Window &w) { w.click("cancelButton"); });
        row("closed after a reset", [](Window &w) {
            w.click("resetButton");
            QCOMPARE(w.shown(), blank);
            w.window.close();
        });
    }
    void forgetsWhatIsNotSaved()
    {
        const auto [end] = Table<std::function<void(Window &)>>::cells();
        Window w;
        w.store({u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s}, true, true, 7);
        const QStringList before = w.stored();
        w.window.close();
        w.show();
        w.type(u"secureID"_s, u"other"_s);
        end(w);
        QVERIFY(!w.window.isVisible());
        QCOMPARE(w.stored(), before);
        w.show();
        QCOMPARE(w.shown(), before);
    }

    void storesABlankFormOnRequest()
    {
        Window w;
        w.store({u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s}, true, true, 7);
        w.click("resetButton");
        w.click("saveButton");
        QCOMPARE(w.stored(), blank);
    }

    void showsTheSecretOnlyWhileAsked()
    {
        Window w;
        w.type(u"passPhrase"_s, u"abc"_s);
        const QLineEdit &secret = w.field(u"passPhrase"_s);
        QVERIFY(!secret.displayText().contains(u'a'));
        w.click("showSecretButton");
        QCOMPARE(secret.displayText(), u"abc"_s);
        w.click("saveButton");
        w.show();
        QCOMPARE(secret.text(), u"abc"_s);
        QVERIFY(!secret.displayText().contains(u'a'));
    }

    void sendsATestMessageWithWhatTheFormShows_data()
    {
        const Table<bool, QString> row;
        row("sent, after an earlier error", true, u"Test Message sent to: +49 1"_s);
        row("refused", false, u"Error sending test message\n<Error>"_s);
    }
    void sendsATestMessageWithWhatTheFormShows()
    {
        const auto [sends, told] = Table<bool, QString>::cells();
        Window w;
        w.sends = sends;
        SendingState::setLastResponse(u"<Error>"_s);
        SendingState::success = !sends;
        w.type(u"testPhoneNo"_s, u" +49 1"_s);
        w.type(u"passPhrase"_s, u"new"_s);
        const QByteArray traces = tracesOf([&w] { w.click("testButton"); });
        QCOMPARE(w.sent, QStringList(u" +49 1:Test new"_s)); // with the switch off
        QCOMPARE(w.script.asked.size(), 1);
        QCOMPARE(w.script.asked[0].messageText, QString());
        QCOMPARE(w.script.asked[0].informativeText, told);
        QCOMPARE(w.script.asked[0].buttons, QStringList(u"OK"_s));
        QVERIFY2(traces.endsWith(sends ? "---Last Response: <Error>\n---Success: false ---\n"
                                       : "---Last Response: <Error>\n---Success: true ---\n"),
                 traces.constData());
        QVERIFY(w.window.isVisible());
        QCOMPARE(w.settings.getTestPhoneNo(), u" +49 1"_s);
    }

    void saysWhatSchedulesStillNeed()
    {
        Window w;
        QCOMPARE(w.label("missingLabel"),
                 u"Sending schedules still needs the account SID, the secret, the sending "
                 "number, the switch that allows sending."_s);
        w.type(u"secureID"_s, u"AC1"_s);
        w.type(u"sendingPhoneNo"_s, u"1"_s);
        w.click("sendSMS");
        QCOMPARE(w.label("missingLabel"), u"Sending schedules still needs the secret."_s);
        w.type(u"passPhrase"_s, u"s"_s);
        QCOMPARE(w.label("missingLabel"), u"Nothing is missing: schedules can be sent."_s);
    }
};

OBLINO_TEST(tst_settingswindow, QApplication)

#include "tst_settingswindow.moc"
