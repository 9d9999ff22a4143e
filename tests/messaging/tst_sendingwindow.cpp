#include "../contacts/storecontacts.h"

#include <controls/datefield.h>
#include <messaging/sendingrun.h>
#include <messaging/sendingstate.h>
#include <messaging/windows/viewcontrollersending.h>
#include <support/store.h>
#include <support/test.h>
#include <support/widgets.h>
#include <ui/uiutil.h>

namespace {

constexpr auto toClients = "sendMsgClients";
constexpr auto toMembers = "sendMsgTeamMembers";
constexpr auto toAll = "sendSMSClientsTeamMembers";

const QString everyButton = u"111"_s;
const QString accountWords =
    u" data vill be sent using your Twilio Account info configured in Settings. Make sure your Twilio "
    "information is configured properly in Settings and you tested it by Sending a Test message from the "
    "Settings window. Please refer to your Twilio license for privacy info."_s;

const QDateTime day = QDate(2026, 3, 3).startOfDay();

task taskOn(const QDateTime &start, const QString &name, const QString &client, const QString &member)
{
    return {.date = start, .name = name, .client = client, .teamMember = member, .due = start.addDays(1)};
}

/// A gateway that keeps what it is to send, and answers what a test says.
struct ScriptedGateway
{
    bool send(const QString &message, const QString &to)
    {
        const qsizetype number = sent().size();
        {
            const QMutexLocker lock(&mutex);
            messages += to + u':' + message;
        }
        answers.acquire();
        return number != failing;
    }
    /// What was sent, as "number:message".
    [[nodiscard]] QStringList sent() const
    {
        const QMutexLocker lock(&mutex);
        return messages;
    }

    static constexpr int all = 1000;
    QSemaphore answers{all};  ///< for so many messages; further ones wait
    std::atomic<int> on{all}; ///< how often in all the switch is found on
    qsizetype failing = all;  ///< the number of a message, from 0; to be set between runs
    mutable QMutex mutex;
    QStringList messages;
};

/// The sending window on contacts, settings and tasks of a test's own, driven by real events.
struct Window : Store
{
    Window()
    {
        storeContacts<Clients>(home.privateFolder(),
                               {{u"Zoe"_s, u"1"_s}, {u"acme"_s, u"2"_s}, {u"Bob"_s, {}}});
        storeContacts<TeamMembers>(home.privateFolder(), {{u"Dana"_s, u"7"_s}, {u"Bo"_s, u"8"_s}});
        for (const auto set : {&TaskManager::setTwilioSID, &TaskManager::setTwilioSecret,
                               &TaskManager::setTwilioSendingPhoneNo, &TaskManager::setMessageTitle})
            (store.*set)(u"T"_s);
        store.setNotification(true);
        store.setMessageFooter(u"F"_s);
        task hidden = taskOn(day.addDays(1), u"b"_s, u"ACME"_s, u"Dana"_s);
        hidden.hidden = true;
        hidden.status = ClosedStatus;
        hidden.startHour = 0;
        hidden.startMin = 5;
        hidden.endHour = 12;
        store.setTasks({taskOn(day.addDays(3).addSecs(-1), u"c"_s, u"ACME"_s, u"Bo"_s),
                        taskOn(day, u"a"_s, u"Zoe"_s, u"Dana"_s), hidden,
                        taskOn(day.addDays(3), u"after"_s, u"ACME"_s, u"Dana"_s),
                        taskOn(day.addSecs(-1), u"before"_s, u"ACME"_s, u"Dana"_s)});
        SendingState::setLastResponse(u"<Error>"_s);
    }
    ~Window() { gateway.answers.release(ScriptedGateway::all); }

    void show()
    {
        controller = std::make_unique<ViewControllerSending>(store, utilities, run, home.privateFolder());
        find<DateField>("startSendDate").setDate(day.date());
        find<DateField>("endSendDate").setDate(day.date().addDays(2));
        showActive(*controller);
    }

    template<typename Widget>
    [[nodiscard]] Widget &find(const char *name) const
    {
        return oblino::find<Widget>(*controller, name);
    }
    void click(const char *name) const { oblino::click(*controller, name); }
    void clickRow(const char *table, int row) const { clickCell(find<QTableView>(table), row, NameColumn); }

    /// Whether the buttons for clients, for team members and for all are, as in "001".
    [[nodiscard]] QString enabled() const
    {
        QString each;
        for (const char *button : {toClients, toMembers, toAll})
            each += QString::number(find<QPushButton>(button).isEnabled());
        return each;
    }
    [[nodiscard]] QString status() const { return find<QLabel>("sendingInfo").text(); }
    /// The text of the last dialog.
    [[nodiscard]] QString told() const { return script.asked.last().informativeText; }

    ScriptedAlert::Script script;
    UIUtil utilities{std::make_unique<ScriptedAlert>(script)};
    ScriptedGateway gateway;
    SendingRun run{
        {.isOn = [this] { return gateway.on-- > 0; },
         .send = [this](const auto &message, const auto &to) { return gateway.send(message, to); }}};
    std::unique_ptr<ViewControllerSending> controller;
};

using Questions = Table<const char *, const char *, int, QString>;
using Commands = Table<const char *, int, QString, QStringList, QString>;

} // namespace

class tst_sendingwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksBeforeItSends_data()
    {
        const Questions row; // those of the other kind do not count
        row("clients, none", toClients, "teamMembers", 0, u"No Client Selected"_s);
        row("team members, none, cancelled", toMembers, "clientsTable", 1, u"No Team Member Selected"_s);
        row("one text, nobody", toAll, nullptr, 0, u"No Client or Team Member Selected"_s);
        row("clients, cancelled", toClients, "clientsTable", 1, u"Scheduling"_s + accountWords);
        row("one text, cancelled", toAll, "teamMembers", 1, u"SMS"_s + accountWords);
    }
    void asksBeforeItSends()
    {
        const auto [button, table, answer, told] = Questions::cells();
        Window w;
        w.show();
        QCOMPARE(namelessIn(*w.controller), QString());
        if (table)
            w.clickRow(table, 0);
        w.script.answer = answer;
        w.click(button);
        QCOMPARE(w.script.asked.value(0).messageText,
                 button == toAll ? u"Are you sure that you want to send SMS messages using Twilio?"_s
                                 : u"Are you sure that you want to send Schedules via SMS using Twilio?"_s);
        QCOMPARE(w.script.asked.value(0).buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
        QCOMPARE(w.told(), told);
        QVERIFY(!w.run.isRunning());
        QCOMPARE(w.enabled(), everyButton);
    }

    void sendsWhatWasThereToWhoIsSelected_data()
    {
        const Commands row; // button, how often the switch is found on, footer, messages, status
        const int on = ScriptedGateway::all;
        const QStringList clients = {u"2:T\nClient Schedule: ACME\n3/3/26-3/5/26\n\r"_s,
                                     u"2:3/4/26 12:05AM-3/5/26 12:00PM b-Dana"_s,
                                     u"2:3/5/26 08:00AM-3/6/26 05:00PM c-Bo"_s,
                                     u"2:F"_s,
                                     u"1:T\nClient Schedule: Zoe\n3/3/26-3/5/26\n\r"_s,
                                     u"1:3/3/26 08:00AM-3/4/26 05:00PM a-Dana"_s,
                                     u"1:F"_s};
        const QString done = u"Steps Performed:15 Schedules#:3"_s;
        row("clients in the order shown", toClients, on, u"F"_s, clients, done);
        row("switched off after two", toClients, 2, u"F"_s, clients.first(2), done);
        row("team members, no footer", toMembers, on, {},
            {u"7:T\nTeam Member Schedule: Dana\n3/3/26-3/5/26\n\r"_s,
             u"7:3/3/26 08:00AM-3/4/26 05:00PM a-Zoe"_s, u"7:3/4/26 12:05AM-3/5/26 12:00PM b-ACME"_s},
            u"Steps Performed:5 Schedules:2"_s);
        row("one text, whatever the switch says", toAll, 0, u"F"_s,
            {u"2:hello"_s, u":hello"_s, u"1:hello"_s, u"7:hello"_s},
            u"Performing Step#:4 Sending Message#:4"_s);
    }
    void sendsWhatWasThereToWhoIsSelected()
    {
        const auto [button, on, footer, sent, done] = Commands::cells();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        Window w;
        w.gateway.on = on;
        w.store.setMessageFooter(footer);
        w.show();
        clickHeader(w.find<QTableView>("clientsTable"), NameColumn);
        for (const int row : {2, 1, 0})
            w.clickRow("clientsTable", row);
        w.clickRow("teamMembers", 0);
        auto &text = w.find<QLineEdit>("smsText");
        QTest::keyClicks(&text, u"hello"_s);
        w.gateway.answers.acquire(ScriptedGateway::all);
        w.click(button);
        QCOMPARE(w.status(), u"Sending..."_s);
        QCOMPARE(w.enabled(), u"000"_s);
        w.store.setTasks({});
        text.clear();
        w.find<QTableView>("clientsTable").clearSelection();
        w.find<DateField>("endSendDate").setDate(day.date().addDays(6));
        w.gateway.answers.release(ScriptedGateway::all);
        QTRY_COMPARE(w.enabled(), everyButton);
        QCOMPARE(w.gateway.sent(), sent);
        QCOMPARE(w.status(), done);
        QCOMPARE(w.script.asked.size(), 1);
    }

    void tellsOfAFailureOfTheLastMessage()
    {
        Window w;
        w.store.setTwilioSID({}); // one text may be sent all the same
        w.show();
        w.click("allTeamMembers");
        const QString error = u"Error Sending Messages. Check Twilio Configuration.\n<Error>"_s;
        for (const qsizetype failing : {0, 3}) {
            w.gateway.failing = failing;
            w.click(toAll);
            QTRY_COMPARE(w.enabled(), everyButton); // whatever it was before
            QCOMPARE(w.told() == error, failing == 3);
        }
    }
};

OBLINO_TEST(tst_sendingwindow, QApplication)

#include "tst_sendingwindow.moc"
