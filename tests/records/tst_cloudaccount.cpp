#include <support/cloudrequests.h>
#include <support/fakepasswordstore.h>
#include <support/postgresserver.h>
#include <support/test.h>

#include <controls/theme.h>
#include <records/cloudsession.h>
#include <records/windows/cloudaccountwindow.h>
#include <records/windows/passwordprompt.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

const CloudAccount annsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"ann"_s};
const CloudAccount bobsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"bob"_s};
const QString annsKey = u"ann@db.invalid:5432/tasks"_s;

/// A session on files of a test's own, whose keyring has an old password of Ann's, and its account window,
/// driven by real events.
struct Desktop
{
    explicit Desktop(const CloudAccount &account)
    {
        keyring.passwords.insert(annsKey, u"old"_s);
        QVERIFY(accounts.save(account));
        session = std::make_unique<CloudSession>(accounts, home.path(u"c.db"_s), keyring,
                                                 QList<const RecordType *>());
    }
    void openWindow()
    {
        window = std::make_unique<CloudAccountWindow>(*session);
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    [[nodiscard]] QString state() const
    {
        return session->needsPassword() ? u"needed"_s : session->password().value_or(u"none"_s);
    }
    template<typename Widget = QWidget>
    [[nodiscard]] Widget &find(const char *name) const
    {
        return *window->findChild<Widget *>(QLatin1String(name));
    }
    /// Types over what a field has.
    void enter(const char *field, const QString &text) const
    {
        find(field).setFocus();
        QTest::keyClick(&find(field), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&find(field), Qt::Key_Delete);
        QTest::keyClicks(&find(field), text);
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
    CloudAccounts accounts = CloudAccounts(home.path(u"config/cloud.ini"_s));
    FakePasswordStore keyring;
    std::unique_ptr<CloudSession> session;
    std::unique_ptr<CloudAccountWindow> window;
};

using Act = std::function<void(Desktop &)>;

Act changeTo(const CloudAccount &account, const std::optional<QString> &password, bool remember)
{
    return [=](Desktop &desktop) { QVERIFY(desktop.session->setAccount(account, password, remember)); };
}

} // namespace

/// The account of the cloud records, its password, and the windows that ask for both.
class tst_cloudaccount : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheAccountForTheNextRun()
    {
        const TemporaryHome home;
        const CloudAccounts accounts(home.path(u"config/cloud.ini"_s));
        for (const CloudAccount &account :
             {CloudAccount{u"a,b"_s, 65535, u"täsks; #1"_s, u"ann"_s, TlsMode::Disable},
              CloudAccount{u"::1"_s, 1, u"tasks"_s, u"ann"_s, TlsMode::Require}, CloudAccount{}}) {
            QVERIFY(accounts.save(account));
            QCOMPARE(accounts.load(), account);
        }
        QVERIFY(
            !(QFile::permissions(home.path(u"config/cloud.ini"_s)) & (QFile::ReadGroup | QFile::ReadOther)));
    }

    void knowsWhatKeyringAndUserSay_data()
    {
        const auto nothing = [](Desktop &) {};
        const auto gone = [](Desktop &desktop) { desktop.session.reset(); };
        const auto typed = [](Desktop &desktop) { desktop.session->setPassword(u"typed"_s, false); };
        const auto back = [](Desktop &desktop) {
            changeTo({}, {}, false)(desktop);
            changeTo(annsAccount, u"new"_s, false)(desktop);
        };
        const Table<bool, Act, QString, QString> row;
        row("answered", true, nothing, u"old"_s, u"old"_s);
        row("too late: the session is gone", false, gone, u"gone"_s, u"old"_s);
        row("too late: the user has typed it", false, typed, u"typed"_s, u"old"_s);
        row("too late: another account", false, changeTo(bobsAccount, {}, false), u"needed"_s, u"old"_s);
        row("too late: there is no account", false, changeTo({}, {}, false), u"none"_s, u"old"_s);
        row("another", true, changeTo(annsAccount, u"new"_s, true), u"new"_s, u"new"_s);
        row("no longer", true, changeTo(annsAccount, u"new"_s, false), u"new"_s, u""_s);
        row("no longer, and asked for", true, changeTo(annsAccount, {}, false), u"needed"_s, u""_s);
        row("the one it has", true, changeTo(annsAccount, {}, true), u"old"_s, u"old"_s);
        row("of another account", true, changeTo(bobsAccount, u"new"_s, true), u"new"_s, u"old"_s);
        row("an outdated one of an account that comes back", true, back, u"new"_s, u""_s);
    }
    void knowsWhatKeyringAndUserSay()
    {
        const auto [isAnswered, act, state, stored] = Table<bool, Act, QString, QString>::cells();
        Desktop desktop(annsAccount);
        QVERIFY(desktop.session->needsPassword());
        if (isAnswered)
            desktop.keyring.answer();
        act(desktop);
        desktop.keyring.answer();
        QCOMPARE(desktop.session ? desktop.state() : u"gone"_s, state);
        QCOMPARE(desktop.keyring.passwords.value(annsKey), stored);
    }

    void tellsThePasswordToServerAndKeyringAlone_data()
    {
        const Table<bool> row;
        row("remembered", true);
        row("not remembered", false);
    }
    void tellsThePasswordToServerAndKeyringAlone()
    {
        const auto [remember] = Table<bool>::cells();
        if (!PostgresServer::isInstalled())
            QSKIP("PostgreSQL is not installed.");
        PostgresServer server;
        const StoreLocation place = server.newPlace();
        Desktop desktop(CloudAccount{});
        desktop.openWindow();
        desktop.enter(place.account);
        const auto outcome = [&desktop](const QString &password) {
            desktop.enter("passwordField", password);
            desktop.startTest();
            const bool isDone = QTest::qWaitFor([&] { return !desktop.isTesting(); }, 20'000);
            return isDone ? desktop.find<QLabel>("testResult").text() : QString();
        };
        CloudContainer &container = desktop.session->container();
        const QByteArray traces = tracesOf([&, remember = remember] {
            QCOMPARE(outcome(u"wrong"_s),
                     u"Wrong password: the server refused the user name or the password."_s);
            QCOMPARE(outcome(place.password), u"The server can be used: sign-in and rights are in order."_s);
            QCOMPARE(desktop.accounts.load(), CloudAccount{});
            desktop.find<QCheckBox>("rememberBox").setChecked(remember);
            QTest::keyClick(&desktop.find("passwordField"), Qt::Key_Return);
            QCOMPARE(desktop.accounts.load(), place.account);
            QCOMPARE(save(container, note(u"one"_s)), u""_s);
        });
        desktop.keyring.answer();
        QCOMPARE(desktop.keyring.passwords.values().contains(place.password), remember);
        QVERIFY(container.description().startsWith(u"anna@127.0.0.1/"_s));
        QVERIFY(!container.description().contains(u"secret"_s) && !traces.contains("secret"));
        QDirIterator files(desktop.home.path({}), QDir::Files, QDirIterator::Subdirectories);
        QVERIFY(files.hasNext());
        while (files.hasNext())
            QVERIFY(!TemporaryHome::content(files.next()).contains("secret"));
    }

    void warnsReadablyWhenTheDesktopGetsDark()
    {
        Desktop desktop(CloudAccount{});
        desktop.openWindow();
        QTest::keyClick(&desktop.find("serverButton"), Qt::Key_Space);
        QTest::keyClick(desktop.window.get(), Qt::Key_Return); // without a host
        const auto &warning = desktop.find<QLabel>("hostProblem");
        QVERIFY(warning.isVisible());
        const QPalette before = QApplication::palette();
        for (const bool dark : {true, false, true}) {
            QApplication::setPalette(calmPalette(dark));
            QTRY_COMPARE(warning.palette().color(QPalette::Window),
                         calmPalette(dark).color(QPalette::Window));
            const int lightness = warning.palette().color(QPalette::WindowText).lightness();
            QVERIFY2(dark ? lightness > 180 : lightness < 100, qPrintable(QString::number(lightness)));
        }
        QApplication::setPalette(before);
    }

    void asksAgainForAPasswordThatTheServerRefuses()
    {
        if (!PostgresServer::isInstalled())
            QSKIP("PostgreSQL is not installed.");
        PostgresServer server;
        const StoreLocation place = server.newPlace();
        Desktop desktop(place.account);
        desktop.openWindow();
        const QString words = u"Wrong password: the server refused the user name or the password."_s;
        for (const QString &password : {u"wrong"_s, QString()}) {
            desktop.session->setPassword(password, true);
            desktop.keyring.answer();
            QVERIFY(!desktop.session->needsPassword());
            const QString why = save(desktop.session->container(), note(u"one"_s));
            QCOMPARE(why, password.isEmpty() ? u"The server asks for a password."_s : words);
            QTRY_VERIFY(desktop.session->needsPassword());
        }
        QString asked;
        bool isRemembered = true;
        QTimer::singleShot(0, qApp, [&] {
            const QWidget *prompt = QApplication::activeModalWidget();
            asked = prompt->findChild<QLabel *>(u"accountLabel"_s)->text();
            prompt->findChild<QLineEdit *>()->setText(place.password);
            isRemembered = prompt->findChild<QCheckBox *>()->isChecked();
            prompt->findChild<QCheckBox *>()->setChecked(false);
            QTest::keyClick(prompt->findChild<QLineEdit *>(), Qt::Key_Return);
        });
        QVERIFY(ensurePassword(*desktop.session, desktop.window.get()));
        QVERIFY2(asked.startsWith(u"The server refused the password that was used."_s), qPrintable(asked));
        QVERIFY(isRemembered); // as the one before was
        QCOMPARE(save(desktop.session->container(), note(u"one"_s)), u""_s);
        desktop.keyring.answer();
        QVERIFY(!desktop.keyring.passwords.values().contains(QString())); // the refused one
    }
};

OBLINO_TEST(tst_cloudaccount, QApplication)

#include "tst_cloudaccount.moc"
