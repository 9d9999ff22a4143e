#include "scriptedgateway.h"

#include <contacts/contactmodel.h>
#include <core/taskmanager.h>
#include <messaging/sendingstate.h>
#include <messaging/windows/viewcontrollersending.h>
#include <platform/appearance.h>
#include <platform/defaults.h>
#include <support/scriptedalert.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>
#include <ui/uiutil.h>

#include <QCheckBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto toClients = "sendMsgClients";
constexpr auto toMembers = "sendMsgTeamMembers";
constexpr auto toAll = "sendSMSClientsTeamMembers";

const QString accountWords = u" data vill be sent using your Twilio Account info configured in Settings. "
                             u"Make sure your Twilio information "
                             "is configured properly in Settings and you tested it by Sending a Test message "
                             "from the Settings window. "
                             "Please refer to your Twilio license for privacy info."_s;

const QByteArray notAStore = "Not at all";

template<typename Contact>
void fill(PersistentContainer &container, const QList<Contact> &contacts)
{
    EntityModel &model = *container.viewContext()->objects(Contact::fetchRequest().entityName);
    for (const Contact &contact : contacts) {
        const int row = model.rowCount();
        QVERIFY(model.insertRow(row) && model.setData(model.index(row, NameColumn), contact.name) &&
                model.setData(model.index(row, PhoneNoColumn), contact.phoneNo));
    }
    QCOMPARE(container.viewContext()->save(), QString());
}

task taskOn(int day, const QString &name, const QString &client, const QString &member)
{
    const QDateTime start = QDate(2026, 3, day).startOfDay();
    return {.date = start, .name = name, .client = client, .teamMember = member, .due = start};
}

/// The sending window on contacts, settings and tasks of a test's own, driven by real events.
struct Window
{
    enum class Store { Filled, Damaged };

    explicit Window(Store contacts = Store::Filled)
    {
        if (contacts == Store::Damaged) {
            QDir().mkpath(home.privateFolder());
            TemporaryHome::write(home.privateFolder() + u"/Model.sqlite"_s, notAStore);
        } else {
            const auto container = makeContactContainer(home.privateFolder());
            QCOMPARE(container->loadPersistentStores().error, QString());
            fill<Clients>(*container, {{u"Zoe"_s, u"1"_s}, {u"acme"_s, u"2"_s}, {u"Bob"_s, {}}});
            fill<TeamMembers>(*container, {{u"Dana"_s, u"7"_s}, {u"Bo"_s, u"8"_s}});
        }
        settings.setTwilioSID(u"AC1"_s);
        settings.setTwilioSecret(u"s"_s);
        settings.setTwilioSendingPhoneNo(u"1"_s);
        settings.setNotification(true);
        settings.setMessageTitle(u"T"_s);
        settings.setMessageFooter(u"F"_s);
        settings.setTasks({taskOn(5, u"c"_s, u"ACME"_s, u"Bo"_s), taskOn(3, u"a"_s, u"Zoe"_s, u"Dana"_s),
                           taskOn(6, u"d"_s, u"ACME"_s, u"Dana"_s), taskOn(4, u"b"_s, u"ACME"_s, u"Dana"_s)});
        SendingState::setLastResponse(u"<Error>"_s);
    }
    ~Window() { gateway.allow(ScriptedGateway::all); }

    void show()
    {
        controller = std::make_unique<ViewControllerSending>(settings, utilities, run, home.privateFolder());
        find<QDateEdit>("startSendDate").setDate(QDate(2026, 3, 3));
        find<QDateEdit>("endSendDate").setDate(QDate(2026, 3, 5));
        controller->show();
        controller->activateWindow();
        (void)QTest::qWaitForWindowActive(controller.get());
    }

    template<typename Widget>
    [[nodiscard]] Widget &find(const char *name) const
    {
        return *controller->findChild<Widget *>(QLatin1String(name));
    }
    void click(const char *name) const
    {
        auto &button = find<QAbstractButton>(name);
        QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
    }
    void clickRow(const char *table, int row) const
    {
        auto &view = find<QTableView>(table);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                          view.visualRect(view.model()->index(row, NameColumn)).center());
    }
    void sortByName(const char *table) const
    {
        const QHeaderView &header = *find<QTableView>(table).horizontalHeader();
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(60, header.height() / 2));
    }

    /// Which of the send buttons are enabled, as in "clients members all".
    [[nodiscard]] QString enabled() const
    {
        QStringList names;
        for (const auto &[button, name] : {std::pair(toClients, u"clients"_s),
                                           std::pair(toMembers, u"members"_s), std::pair(toAll, u"all"_s)}) {
            if (find<QPushButton>(button).isEnabled())
                names += name;
        }
        return names.join(u' ');
    }
    [[nodiscard]] QString status() const { return find<QLabel>("sendingInfo").text(); }
    [[nodiscard]] QList<int> bar() const
    {
        const auto &bar = find<QProgressBar>("progressBar");
        return {bar.minimum(), bar.value(), bar.maximum()};
    }
    /// What the dialogs of one button have said.
    [[nodiscard]] QStringList told() const
    {
        QStringList texts;
        for (const Alert::Question &question : script.asked) {
            if (question.buttons == QStringList(u"OK"_s) && question.messageText.isEmpty())
                texts += question.informativeText;
        }
        return texts;
    }

    TemporaryHome home;
    Defaults defaults{home.path(u"settings.ini"_s)};
    Appearance appearance;
    TaskManager settings{defaults, appearance};
    ScriptedAlert::Script script;
    UIUtil utilities{std::make_unique<ScriptedAlert>(script)};
    ScriptedGateway gateway;
    SendingRun run{gateway.calls()};
    std::unique_ptr<ViewControllerSending> controller;
};

const QString everyButton = u"clients members all"_s;

} // namespace

class tst_sendingwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersSchedulesOnceNothingIsMissing_data()
    {
        using Set = std::function<void(TaskManager &)>;
        const Table<Set, QString> row;
        row("nothing", [](TaskManager &) {}, {});
        row(
            "account", [](TaskManager &s) { s.setTwilioSID({}); }, u"the account SID"_s);
        row(
            "secret", [](TaskManager &s) { s.setTwilioSecret({}); }, u"the secret"_s);
        row(
            "number", [](TaskManager &s) { s.setTwilioSendingPhoneNo({}); }, u"the sending number"_s);
        row(
            "switch", [](TaskManager &s) { s.setNotification(false); }, u"the switch that allows sending"_s);
    }
    void offersSchedulesOnceNothingIsMissing()
    {
        const auto [set, missing] = Table<std::function<void(TaskManager &)>, QString>::cells();
        Window w;
        set(w.settings);
        w.show();
        const QString why = missing.isEmpty()
                                ? QString()
                                : u"Tools \u25b8 Messaging Settings still needs "_s + missing + u'.';
        QCOMPARE(w.controller->minimumSize(), QSize(469, 763));
        QCOMPARE(w.enabled(), missing.isEmpty() ? everyButton : u"all"_s);
        QCOMPARE(w.find<QPushButton>(toClients).toolTip(), why);
        QCOMPARE(w.find<QPushButton>(toMembers).toolTip(), why);
        QCOMPARE(w.status(), why);
    }

    void asksBeforeItSends_data()
    {
        const Table<const char *, bool, int, QStringList> row;
        row("clients, none", toClients, false, 0, {u"No Client Selected"_s});
        row("clients, none, cancelled", toClients, false, 1, {u"No Client Selected"_s});
        row("clients, cancelled", toClients, true, 1, {});
        row("team members, none", toMembers, false, 0, {u"No Team Member Selected"_s});
        row("team members, cancelled", toMembers, true, 1, {});
        row("one text, nobody", toAll, false, 0, {u"No Client or Team Member Selected"_s});
        row("one text, cancelled", toAll, true, 1, {});
    }
    void asksBeforeItSends()
    {
        const auto [button, selects, answer, told] = Table<const char *, bool, int, QStringList>::cells();
        Window w;
        w.show();
        if (selects) {
            w.clickRow("clientsTable", 0);
            w.clickRow("teamMembers", 0);
        } else if (button != toAll) { // those of the other kind do not count
            w.clickRow(button == toClients ? "teamMembers" : "clientsTable", 0);
        }
        w.script.answer = answer;
        SendingState::success = false;
        const QByteArray traces = tracesOf([&w, button = button] { w.click(button); });
        const Alert::Question asked = w.script.asked.value(0);
        const bool isText = button == toAll;
        QCOMPARE(asked.messageText,
                 isText ? u"Are you sure that you want to send SMS messages using Twilio?"_s
                        : u"Are you sure that you want to send Schedules via SMS using Twilio?"_s);
        QCOMPARE(asked.informativeText, (isText ? u"SMS"_s : u"Scheduling"_s) + accountWords);
        QCOMPARE(asked.buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
        QCOMPARE(w.script.asked.size(), 1 + told.size());
        QCOMPARE(w.told(), told);
        QVERIFY(
            traces.contains(answer == 0 ? "---Are You Sure: true ---\n" : "---Are You Sure: false ---\n"));
        QVERIFY(!w.run.isRunning() && SendingState::success);
        if (selects && !isText)
            QCOMPARE(w.bar(), (QList<int>{0, 0, 4})); // set before it asks
        QCOMPARE(w.enabled(), everyButton);
    }

    void sendsWhatWasThereToWhoIsSelected_data()
    {
        const Table<const char *, QStringList, QList<int>, QString> row;
        row("clients in the order shown", toClients,
            {u"2:T Client Schedule: ACME 3/3/26-3/5/26"_s, u"2:3/4/26 08:00AM-3/4/26 05:00PM b-Dana"_s,
             u"2:3/5/26 08:00AM-3/5/26 05:00PM c-Bo"_s, u"2:F"_s, u"1:T Client Schedule: Zoe 3/3/26-3/5/26"_s,
             u"1:3/3/26 08:00AM-3/3/26 05:00PM a-Dana"_s, u"1:F"_s},
            {0, 0, 12}, u"Steps Performed:12 Schedules#:3"_s);
        row("team members", toMembers,
            {u"7:T Team Member Schedule: Dana 3/3/26-3/5/26"_s, u"7:3/3/26 08:00AM-3/3/26 05:00PM a-Zoe"_s,
             u"7:3/4/26 08:00AM-3/4/26 05:00PM b-ACME"_s, u"7:F"_s},
            {0, 0, 4}, u"Steps Performed:4 Schedules:2"_s);
        row("one text, one without a number", toAll, {u"2:hello"_s, u":hello"_s, u"1:hello"_s, u"7:hello"_s},
            {1, 0, 4}, u"Performing Step#:4 Sending Message#:4"_s);
    }
    void sendsWhatWasThereToWhoIsSelected()
    {
        const auto [button, sent, bar, done] = Table<const char *, QStringList, QList<int>, QString>::cells();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        Window w;
        w.show();
        w.sortByName("clientsTable");
        for (const int row : {2, 1, 0})
            w.clickRow("clientsTable", row);
        w.clickRow("teamMembers", 0);
        auto &text = w.find<QLineEdit>("smsText");
        QTest::keyClicks(&text, u"hello"_s);
        w.gateway.allow(0);
        w.click(button);
        QCOMPARE(w.status(), u"Sending..."_s);
        QCOMPARE(w.bar(), bar);
        QCOMPARE(w.enabled(), QString());
        w.settings.setTasks({});
        text.clear();
        w.find<QTableView>("clientsTable").clearSelection();
        w.find<QDateEdit>("endSendDate").setDate(QDate(2026, 3, 9));
        w.gateway.allow(ScriptedGateway::all);
        QTRY_COMPARE(w.enabled(), everyButton);
        QCOMPARE(w.gateway.sent(), sent);
        QCOMPARE(w.status(), done);
        QCOMPARE(w.bar(), (QList<int>{bar[0], bar[2], bar[2]}));
        QCOMPARE(w.script.asked.size(), 1);
    }

    void tellsOfAFailureOfTheLastMessage()
    {
        Window w;
        w.settings.setTwilioSID({}); // one text may be sent all the same
        w.show();
        w.click("allTeamMembers");
        const auto send = [&w](const char *button, const QList<qsizetype> &failing) {
            w.gateway.fail(failing);
            w.click(button);
            QTRY_COMPARE(w.enabled(), everyButton); // whatever it was before
        };
        send(toAll, {0});
        QCOMPARE(w.told(), QStringList());
        send(toAll, {3});
        const QStringList error = {u"Error Sending Messages. Check Twilio Configuration.\n<Error>"_s};
        QCOMPARE(w.told(), error);
        w.gateway.setOn(0);
        send(toMembers, {4, 5});
        QCOMPARE(w.gateway.sent().size(), 4);
        QCOMPARE(w.status(), u"Steps Performed:8 Schedules:3"_s);
        QCOMPARE(w.told(), error);
    }

    void selectsAllAndNone()
    {
        Window w;
        w.show();
        for (const auto &[box, table, words, rows] :
             {std::tuple("allClients", "clientsTable", u"A&ll clients (%1 selected)"_s, 3),
              std::tuple("allTeamMembers", "teamMembers", u"All team &members (%1 selected)"_s, 2)}) {
            const auto &all = w.find<QCheckBox>(box);
            QCOMPARE(all.text(), words.arg(0));
            w.click(box);
            QVERIFY(all.isChecked());
            QCOMPARE(all.text(), words.arg(rows));
            w.clickRow(table, 0);
            QVERIFY(!all.isChecked());
            QCOMPARE(all.text(), words.arg(rows - 1));
            w.click(box);
            w.click(box);
            QCOMPARE(all.text(), words.arg(0));
        }
    }

    void runsOnWhenItIsClosed()
    {
        Window w;
        w.show();
        w.click("allClients");
        w.gateway.allow(1);
        w.click(toClients);
        QTRY_COMPARE(w.gateway.sent().size(), 2);
        w.controller->close();
        w.controller.reset();
        w.show();
        QCOMPARE(w.enabled(), QString());
        QCOMPARE(w.status(), u"Steps Performed:1 of 12 Sending Schedule#:1"_s);
        QCOMPARE(w.bar(), (QList<int>{0, 1, 12}));
        w.gateway.allow(ScriptedGateway::all);
        QTRY_COMPARE(w.enabled(), everyButton);
        QCOMPARE(w.status(), u"Steps Performed:12 Schedules#:3"_s);
        QCOMPARE(w.gateway.sent().size(), 7);
    }

    void saysWhyItShowsNobody()
    {
        Window w(Window::Store::Damaged);
        const QString file = w.home.privateFolder() + u"/Model.sqlite"_s;
        const QByteArray traces = tracesOf([&w] {
            w.show();
            for (const char *table : {"clientsTable", "teamMembers"}) {
                const QString words = w.find<QTableView>(table).accessibleDescription();
                QVERIFY2(words.contains(u"could not be opened"_s) && words.contains(u"not a database"_s),
                         qPrintable(words));
            }
            for (const char *name : {"allClients", "allTeamMembers", toClients, toMembers, toAll})
                w.click(name);
            w.controller->close();
        });
        QVERIFY(traces.startsWith("Unable to Add Persistent Store " + file.toUtf8()));
        QCOMPARE(w.told(), (QStringList{u"No Client Selected"_s, u"No Team Member Selected"_s,
                                        u"No Client or Team Member Selected"_s}));
        QCOMPARE(TemporaryHome::content(file), notAStore);
    }

    void countsTheCharactersThatAreLeft_data()
    {
        const Table<QString, QString> row;
        row("nothing", {}, u"160 of 160 characters left"_s);
        row("an emoji and a letter with a mark", u"\U0001F44D\U0001F3FDe\u0301"_s,
            u"158 of 160 characters left"_s);
        row("as many as there may be", QString(160, u'a'), u"0 of 160 characters left"_s);
        row("too many", QString(162, u'a'), u"2 characters too long; the end will be cut off"_s);
        row("long ones",
            u"\U0001F469\U0001F3FD\u200D\u2764\uFE0F\u200D\U0001F48B\u200D\U0001F468\U0001F3FC"_s.repeated(
                160),
            u"0 of 160 characters left"_s);
    }
    void countsTheCharactersThatAreLeft()
    {
        const auto [text, expected] = Table<QString, QString>::cells();
        Window w;
        w.show();
        w.find<QLineEdit>("smsText").insert(text);
        QCOMPARE(w.find<QLabel>("lengthLabel").text(), expected);
        w.clickRow("teamMembers", 0);
        w.click(toAll);
        QTRY_COMPARE(w.gateway.sent(), QStringList(u"7:"_s + text));
    }
};

OBLINO_TEST(tst_sendingwindow, QApplication)

#include "tst_sendingwindow.moc"
