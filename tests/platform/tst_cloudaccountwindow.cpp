#include <support/fakepasswordstore.h>
#include <support/postgresserver.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>

#include <platform/cloud/cloudsession.h>
#include <platform/widgets/cloudaccountwindow.h>
#include <platform/widgets/passwordprompt.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const CloudAccount annsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"ann"_s};

/// The account window of a session, shown, driven by real events. The keyring has Ann's password.
struct Window
{
    explicit Window(const CloudAccount &account = {})
    {
        keyring.passwords.insert(u"ann@db.invalid:5432/tasks"_s, u"stored"_s);
        QVERIFY(accounts.save(account));
        session = std::make_unique<CloudSession>(accounts, home.path(u"c.db"_s), keyring,
                                                 QList<const RecordType *>());
        window = std::make_unique<CloudAccountWindow>(*session);
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    template<typename Widget = QWidget>
    [[nodiscard]] Widget &find(const char *name) const
    {
        return *window->findChild<Widget *>(QLatin1String(name));
    }
    void press(Qt::Key key) const { QTest::keyClick(QApplication::focusWidget(), key); }
    /// Types over what a field has.
    void enter(const char *field, const QString &text) const
    {
        QWidget &widget = find(field);
        widget.setFocus();
        QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&widget, Qt::Key_Delete);
        QTest::keyClicks(&widget, text);
    }
    void enter(const CloudAccount &account) const
    {
        QTest::keyClick(&find("serverButton"), Qt::Key_Space);
        enter("hostField", account.host);
        enter("portField", QString::number(account.port));
        enter("databaseField", account.database);
        enter("userField", account.user);
        find<QComboBox>("securityBox").setCurrentIndex(static_cast<int>(account.tlsMode));
    }
    void startTest() const { QTest::mouseClick(&find("testButton"), Qt::LeftButton); }
    [[nodiscard]] bool isTesting() const { return find("testProgress").isVisible(); }

    TemporaryHome home;
    CloudAccounts accounts = CloudAccounts(home.path(u"cloud.ini"_s));
    FakePasswordStore keyring;
    std::unique_ptr<CloudSession> session;
    std::unique_ptr<CloudAccountWindow> window;
};

} // namespace

class tst_cloudaccountwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesWhatCannotBeAnAccount_data()
    {
        const Table<const char *, QString, const char *> row;
        row("no host", "hostField", u" , "_s, "hostProblem");
        row("a host of two words", "hostField", u"db example"_s, "hostProblem");
        row("an address with a path", "hostField", u"a.example,db.example/tasks"_s, "hostProblem");
        row("port 0", "portField", u"0"_s, "portProblem");
        row("no database", "databaseField", u""_s, "databaseProblem");
        row("no user", "userField", u" "_s, "userProblem");
    }
    void refusesWhatCannotBeAnAccount()
    {
        const auto [field, text, problem] = Table<const char *, QString, const char *>::cells();
        const Window window;
        window.enter(annsAccount);
        window.enter(field, text);
        window.find("passwordField").setFocus();
        window.press(Qt::Key_Return);
        QVERIFY(window.window->isVisible());
        QVERIFY(window.find(problem).isVisible());
        QVERIFY(window.find(field).hasFocus());
        window.startTest();
        QVERIFY(!window.isTesting());
        QCOMPARE(window.accounts.load(), CloudAccount{});
    }

    void keepsAccountAndPasswordOnOkAlone_data()
    {
        const Table<QString, bool, Qt::Key> row;
        row("OK", u"a.example, b.example"_s, false, Qt::Key_Return);
        row("OK, remembered, by the folder of a socket", u"/run/postgresql"_s, true, Qt::Key_Return);
        row("Esc", u"a.example"_s, true, Qt::Key_Escape);
    }
    void keepsAccountAndPasswordOnOkAlone()
    {
        const auto [host, remember, key] = Table<QString, bool, Qt::Key>::cells();
        Window window;
        window.keyring.passwords.clear();
        CloudAccount account = annsAccount;
        account.host = host;
        window.enter(account);
        window.enter("passwordField", u"secret"_s);
        if (remember)
            QTest::keyClick(&window.find("rememberBox"), Qt::Key_Space);
        window.press(key);
        QVERIFY(!window.window->isVisible());
        window.keyring.answer();
        const bool kept = key == Qt::Key_Return;
        account.host = tidyHosts(host);
        QCOMPARE(window.accounts.load(), kept ? account : CloudAccount{});
        QCOMPARE(window.session->account(), kept ? account : CloudAccount{});
        QCOMPARE(window.session->password().value_or(u"none"_s), kept ? u"secret"_s : u"none"_s);
        QCOMPARE(window.keyring.passwords.values(), QStringList(kept && remember ? 1 : 0, u"secret"_s));
    }

    void showsWhatTheKeyringHas_data()
    {
        const Table<bool, QString, QString, bool> row;
        row("nothing was typed", true, u""_s, u"stored"_s, true);
        row("something was typed by then", true, u"typed"_s, u"typed"_s, false);
        row("there is none", false, u""_s, u""_s, false);
    }
    void showsWhatTheKeyringHas()
    {
        const auto [exists, typed, shown, isRemembered] = Table<bool, QString, QString, bool>::cells();
        Window window(annsAccount);
        window.keyring.exists = exists;
        QTest::keyClicks(&window.find("passwordField"), typed);
        window.keyring.answer();
        const auto &field = window.find<QLineEdit>("passwordField");
        QCOMPARE(field.text(), shown);
        QVERIFY(shown.isEmpty() || !field.displayText().contains(shown));
        QCOMPARE(window.find<QCheckBox>("rememberBox").isChecked(), isRemembered);
        QCOMPARE(window.find("rememberBox").isEnabled(), exists);
    }

    void warnsOfWeakConnections()
    {
        const Window window(annsAccount);
        QVERIFY(!window.find("securityWarning").isVisible());
        for (int weaker = 0; weaker < 2; ++weaker) {
            QTest::keyClick(&window.find("securityBox"), Qt::Key_Down);
            QVERIFY(window.find("securityWarning").isVisible());
        }
    }

    void saysInWordsWhatTheTestHasShown()
    {
        if (!PostgresServer::isInstalled())
            QSKIP("PostgreSQL is not installed.");
        PostgresServer server;
        const RecordPlace place = server.newPlace();
        const Window window;
        window.enter(place.account);
        const auto &result = window.find<QLabel>("testResult");
        const auto outcome = [&](const QString &password) {
            window.enter("passwordField", password);
            const bool isForgotten = !result.isVisible();
            window.startTest();
            const bool isDone = QTest::qWaitFor([&] { return !window.isTesting(); }, 20'000);
            return isForgotten && isDone && result.isVisible() ? result.text() : QString();
        };
        QCOMPARE(outcome(u"wrong"_s), u"The server refused the user name or the password."_s);
        QCOMPARE(outcome(place.password), u"The server can be used: sign-in and rights are in order."_s);
        server.stop();
        QVERIFY(outcome(place.password).startsWith(u"The server 127.0.0.1 cannot be reached on port"_s));
        QCOMPARE(window.accounts.load(), CloudAccount{});
    }

    void endsATestWithWhatItWasFor_data()
    {
        const Table<std::function<void(Window &)>> row;
        row("closed", [](Window &window) { window.press(Qt::Key_Escape); });
        row("gone", [](Window &window) { window.window.reset(); });
        row("other input", [](Window &window) { window.enter("userField", u"bob"_s); });
    }
    void endsATestWithWhatItWasFor()
    {
        const auto [act] = Table<std::function<void(Window &)>>::cells();
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        CloudAccount account = annsAccount;
        account.host = u"127.0.0.1"_s;
        account.port = silent.serverPort();
        Window window;
        window.enter(account);
        window.startTest();
        QTRY_VERIFY(silent.hasPendingConnections());
        const QTcpSocket *guest = silent.nextPendingConnection();
        QVERIFY(window.isTesting());
        act(window);
        QTRY_COMPARE_WITH_TIMEOUT(guest->state(), QAbstractSocket::UnconnectedState, 3'000);
        QVERIFY(!window.window || (!window.isTesting() && !window.find("testResult").isVisible()));
    }

    void asksForThePasswordOnceARun_data()
    {
        const auto typed = [](QWidget *prompt, Window &) {
            auto *field = prompt->findChild<QLineEdit *>();
            QTRY_VERIFY(field->hasFocus());
            QTest::keyClicks(field, u"secret"_s);
            QTest::keyClick(prompt, Qt::Key_Return);
        };
        const auto cancelled = [](QWidget *prompt, Window &) { QTest::keyClick(prompt, Qt::Key_Escape); };
        const auto answered = [](QWidget *, Window &window) { window.keyring.answer(); };
        const auto gone = [](QWidget *, Window &window) { window.window.reset(); };
        const Table<std::function<void(QWidget *, Window &)>, QString> row;
        row("typed", typed, u"secret"_s);
        row("cancelled", cancelled, u"none"_s);
        row("the keyring answers after all", answered, u"stored"_s);
        row("its window goes", gone, u"none"_s);
    }
    void asksForThePasswordOnceARun()
    {
        const auto [act, password] = Table<std::function<void(QWidget *, Window &)>, QString>::cells();
        Window window(annsAccount);
        QTimer::singleShot(0, qApp, [&window, act = act] { act(QApplication::activeModalWidget(), window); });
        const bool isKnown = password != u"none"_s;
        QCOMPARE(ensurePassword(*window.session, window.window.get()), isKnown);
        QCOMPARE(window.session->password().value_or(u"none"_s), password);
        QVERIFY(!isKnown || ensurePassword(*window.session, window.window.get()));
    }
};

OBLINO_TEST(tst_cloudaccountwindow, QApplication)

#include "tst_cloudaccountwindow.moc"
