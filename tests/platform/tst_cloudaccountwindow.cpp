#include <support/fakepasswordstore.h>
#include <support/loginserver.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>

#include <platform/cloud/cloudsession.h>
#include <platform/widgets/cloudaccountwindow.h>
#include <platform/widgets/passwordprompt.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTimer>

#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const CloudAccount annsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"ann"_s};
const QString annsKey = u"ann@db.invalid:5432/tasks"_s;
const QStringList fieldNames = {u"hostField"_s,     u"portField"_s,   u"databaseField"_s, u"userField"_s,
                                u"passwordField"_s, u"securityBox"_s, u"rememberBox"_s,   u"testButton"_s};

/// The account window of a session, shown, driven by real events.
struct Window
{
    explicit Window(const CloudAccount &account = {}, const QString &password = {})
    {
        if (!password.isEmpty())
            keyring.passwords.insert(annsKey, password);
        if (!accounts.save(account))
            return;
        session = std::make_unique<CloudSession>(accounts, home.path(u"c.db"_s), keyring,
                                                 QList<const RecordType *>());
        window = std::make_unique<CloudAccountWindow>(*session);
        window->show();
        window->activateWindow();
        (void)QTest::qWaitForWindowActive(window.get());
    }

    template<typename Widget = QWidget>
    [[nodiscard]] Widget &find(const QString &name) const
    {
        return *window->findChild<Widget *>(name);
    }
    void click(const QString &name) const { QTest::mouseClick(&find(name), Qt::LeftButton); }
    void choose(const char *radio) const
    {
        auto &button = find<QRadioButton>(QLatin1String(radio));
        QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
    }
    void press(Qt::Key key) const { QTest::keyClick(QApplication::focusWidget(), key); }
    /// Types over what a field has, or takes it away.
    void enter(const QString &field, const QString &text) const
    {
        QWidget &widget = find(field);
        widget.setFocus();
        QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&widget, Qt::Key_Delete);
        QTest::keyClicks(&widget, text);
    }
    void enter(const CloudAccount &account) const
    {
        choose("serverButton");
        enter(u"hostField"_s, account.host);
        enter(u"portField"_s, QString::number(account.port));
        enter(u"databaseField"_s, account.database);
        enter(u"userField"_s, account.user);
        find<QComboBox>(u"securityBox"_s).setCurrentIndex(static_cast<int>(account.tlsMode));
    }
    [[nodiscard]] QString result() const
    {
        const auto &label = find<QLabel>(u"testResult"_s);
        return label.isVisible() ? label.text() : QString();
    }
    [[nodiscard]] bool isTesting() const { return find(u"testProgress"_s).isVisible(); }

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
    void opensItsFieldsForAServerAlone()
    {
        const Window window;
        const auto enabled = [&window] {
            QStringList names = fieldNames;
            names.removeIf([&](const QString &name) { return !window.find(name).isEnabled(); });
            return names;
        };
        QVERIFY(window.find<QRadioButton>(u"localButton"_s).isChecked());
        QCOMPARE(enabled(), QStringList());
        window.choose("serverButton");
        QCOMPARE(enabled(), fieldNames);
        window.choose("localButton");
        QCOMPARE(enabled(), QStringList());
    }

    void refusesWhatCannotBeAnAccount_data()
    {
        const Table<QString, QString, QString> row;
        row("no host", u"hostField"_s, u" , "_s, u"hostProblem"_s);
        row("a host of two words", u"hostField"_s, u"db example"_s, u"hostProblem"_s);
        row("an address with a path", u"hostField"_s, u"a.example,db.example/tasks"_s, u"hostProblem"_s);
        row("port 0", u"portField"_s, u"0"_s, u"portProblem"_s);
        row("no database", u"databaseField"_s, u""_s, u"databaseProblem"_s);
        row("no user", u"userField"_s, u" "_s, u"userProblem"_s);
    }
    void refusesWhatCannotBeAnAccount()
    {
        const auto [field, text, problem] = Table<QString, QString, QString>::cells();
        const Window window;
        window.enter(annsAccount);
        window.enter(field, text);
        window.find(u"passwordField"_s).setFocus();
        window.press(Qt::Key_Return);
        QVERIFY(window.window->isVisible());
        QVERIFY(window.find(problem).isVisible());
        QVERIFY(window.find(field).hasFocus());
        QVERIFY(!window.find(field).accessibleDescription().isEmpty());
        QCOMPARE(window.accounts.load(), CloudAccount{});
        window.click(u"testButton"_s);
        QVERIFY(!window.isTesting());

        window.enter(annsAccount);
        QVERIFY(!window.find(problem).isVisible());
        window.press(Qt::Key_Return);
        QVERIFY(!window.window->isVisible());
        QCOMPARE(window.accounts.load(), annsAccount);
    }

    void takesAFolderOfASocketForAHost()
    {
        const Window window;
        CloudAccount account = annsAccount;
        account.host = u"/run/postgresql"_s;
        window.enter(account);
        window.press(Qt::Key_Return);
        QCOMPARE(window.accounts.load(), account);
    }

    void keepsAccountAndPasswordOnOkAlone_data()
    {
        const Table<bool, Qt::Key> row;
        row("OK", false, Qt::Key_Return);
        row("OK, remembered", true, Qt::Key_Return);
        row("Esc", true, Qt::Key_Escape);
    }
    void keepsAccountAndPasswordOnOkAlone()
    {
        const auto [remember, key] = Table<bool, Qt::Key>::cells();
        Window window;
        CloudAccount account = annsAccount;
        account.host = u"a.example, b.example"_s;
        window.enter(account);
        window.enter(u"passwordField"_s, u"secret"_s);
        if (remember)
            QTest::keyClick(&window.find(u"rememberBox"_s), Qt::Key_Space);
        window.press(key);
        QVERIFY(!window.window->isVisible());
        window.keyring.answer();
        account.host = u"a.example,b.example"_s;
        const bool kept = key == Qt::Key_Return;
        QCOMPARE(window.accounts.load(), kept ? account : CloudAccount{});
        QCOMPARE(window.session->account(), kept ? account : CloudAccount{});
        QCOMPARE(window.session->password().value_or(u"none"_s), kept ? u"secret"_s : u"none"_s);
        QCOMPARE(window.keyring.passwords.values(),
                 kept && remember ? QStringList{u"secret"_s} : QStringList());
    }

    void showsWhatTheKeyringHas_data()
    {
        const Table<QString, QString> row;
        row("nothing was typed", u""_s, u"stored"_s);
        row("something was typed by then", u"typed"_s, u"typed"_s);
    }
    void showsWhatTheKeyringHas()
    {
        const auto [typed, shown] = Table<QString, QString>::cells();
        Window window(annsAccount, u"stored"_s);
        QTest::keyClicks(&window.find(u"passwordField"_s), typed);
        window.keyring.answer();
        const auto &field = window.find<QLineEdit>(u"passwordField"_s);
        QCOMPARE(field.text(), shown);
        QVERIFY(!field.displayText().contains(shown));
        QCOMPARE(window.find<QCheckBox>(u"rememberBox"_s).isChecked(), typed.isEmpty());
    }

    void offersNoKeyringWhereThereIsNone()
    {
        Window window(annsAccount, u"stored"_s);
        window.keyring.exists = false;
        window.keyring.answer();
        QVERIFY(!window.find(u"rememberBox"_s).isEnabled());
        QVERIFY(!window.find(u"rememberBox"_s).toolTip().isEmpty());
        bool wasOffered = true;
        QTimer::singleShot(0, window.window.get(), [&wasOffered] {
            QWidget *prompt = QApplication::activeModalWidget();
            wasOffered = prompt->findChild<QCheckBox *>(u"rememberBox"_s)->isEnabled();
            QTest::keyClick(prompt, Qt::Key_Escape);
        });
        QVERIFY(!ensurePassword(*window.session, window.window.get()));
        QVERIFY(!wasOffered);
    }

    void warnsOfWeakConnections()
    {
        const Window window(annsAccount);
        const auto &warning = window.find<QLabel>(u"securityWarning"_s);
        QVERIFY(!warning.isVisible());
        QSet<QString> warnings;
        for (int weaker = 0; weaker < 2; ++weaker) {
            QTest::keyClick(&window.find(u"securityBox"_s), Qt::Key_Down);
            QVERIFY(warning.isVisible());
            warnings += warning.text();
        }
        QCOMPARE(warnings.size(), 2);
    }

    void saysInWordsWhatTheTestHasShown_data()
    {
        const Table<bool, QString> row;
        row("a server that refuses", true, u"The server refused the user name or the password."_s);
        row("a closed port", false, u"The server 127.0.0.1 cannot be reached on port"_s);
    }
    void saysInWordsWhatTheTestHasShown()
    {
        const auto [isThere, words] = Table<bool, QString>::cells();
        LoginServer server;
        const CloudAccount account = server.account();
        if (!isThere)
            server.close();
        const Window window;
        window.enter(account);
        window.enter(u"passwordField"_s, u"s3cret"_s);
        window.click(u"testButton"_s);
        QVERIFY(window.isTesting());
        QVERIFY(!window.find(u"testButton"_s).isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isTesting(), 20'000);
        QVERIFY2(window.result().startsWith(words), qPrintable(window.result()));
        QVERIFY(!window.result().contains(u"s3cret"_s));
        QVERIFY(window.find(u"testButton"_s).isEnabled());
        QCOMPARE(server.passwords, isThere ? QStringList{u"s3cret"_s} : QStringList());
        QCOMPARE(window.accounts.load(), CloudAccount{});
        window.enter(u"userField"_s, u"bob"_s);
        QCOMPARE(window.result(), QString());
    }

    void endsATestWithWhatItWasFor_data()
    {
        using Act = std::function<void(Window &)>;
        const Table<Act> row;
        row("closed", [](Window &window) { window.press(Qt::Key_Escape); });
        row("gone", [](Window &window) { window.window.reset(); });
        row("other input", [](Window &window) { window.enter(u"userField"_s, u"bob"_s); });
        row("no server any more", [](Window &window) { window.choose("localButton"); });
    }
    void endsATestWithWhatItWasFor()
    {
        using Act = std::function<void(Window &)>;
        const auto [act] = Table<Act>::cells();
        LoginServer server;
        server.isSilent = true;
        Window window;
        window.enter(server.account());
        window.click(u"testButton"_s);
        QTRY_COMPARE(server.guests, 1);
        QVERIFY(window.isTesting());
        act(window);
        QTRY_COMPARE_WITH_TIMEOUT(server.guests, 0, 3'000);
        QVERIFY(!window.window || (!window.isTesting() && window.result().isEmpty()));
    }

    void cutsNoWordsAndNamesEveryControl_data()
    {
        const Table<double> row;
        row("usual fonts", 1.0);
        row("fonts of 150 %", 1.5);
    }
    void cutsNoWordsAndNamesEveryControl()
    {
        const auto [scale] = Table<double>::cells();
        const QFont usual = QApplication::font();
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * scale);
        QApplication::setFont(font);
        const Window window;
        window.choose("serverButton");
        window.find<QComboBox>(u"securityBox"_s).setCurrentIndex(2);
        QTest::keyClick(window.window.get(), Qt::Key_Return);
        QVERIFY(window.find(u"hostProblem"_s).isVisible());
        window.window->resize(window.window->minimumSizeHint());
        QCoreApplication::processEvents();
        for (const QWidget *widget : window.window->findChildren<QWidget *>()) {
            if (!widget->isVisible() || widget->parentWidget() != window.window.get())
                continue;
            const int needed = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                           : widget->minimumSizeHint().height();
            QVERIFY2(widget->height() >= needed, qPrintable(widget->objectName()));
            QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
            const bool isControl = widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr;
            QAccessibleInterface *access =
                QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
            if (isControl)
                QVERIFY2(!access->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        }
        QApplication::setFont(usual);
    }

    void asksForThePasswordOnceARun_data()
    {
        using Act = std::function<void(QWidget * prompt, Window & window)>;
        const Table<Act, bool, QString> row;
        row(
            "typed",
            [](QWidget *prompt, Window &) {
                auto *field = prompt->findChild<QLineEdit *>();
                QTRY_VERIFY(field->hasFocus());
                QTest::keyClicks(field, u"secret"_s);
                QTest::keyClick(prompt, Qt::Key_Return);
            },
            true, u"secret"_s);
        row(
            "a server that asks for none",
            [](QWidget *prompt, Window &) { QTest::keyClick(prompt, Qt::Key_Return); }, true, u""_s);
        row(
            "cancelled", [](QWidget *prompt, Window &) { QTest::keyClick(prompt, Qt::Key_Escape); }, false,
            u"none"_s);
        row(
            "the keyring answers after all", [](QWidget *, Window &window) { window.keyring.answer(); }, true,
            u"stored"_s);
        row(
            "its window goes", [](QWidget *, Window &window) { window.window.reset(); }, false, u"none"_s);
    }
    void asksForThePasswordOnceARun()
    {
        using Act = std::function<void(QWidget * prompt, Window & window)>;
        const auto [act, answer, password] = Table<Act, bool, QString>::cells();
        Window window(annsAccount, u"stored"_s);
        QTimer::singleShot(0, qApp, [&window, act = act] {
            QWidget *prompt = QApplication::activeModalWidget();
            QVERIFY(prompt);
            (void)QTest::qWaitForWindowActive(prompt);
            act(prompt, window);
        });
        QCOMPARE(ensurePassword(*window.session, window.window.get()), answer);
        QCOMPARE(window.session->password().value_or(u"none"_s), password);
        if (answer)
            QVERIFY(ensurePassword(*window.session, window.window.get()));
    }
};

OBLINO_TEST(tst_cloudaccountwindow, QApplication)

#include "tst_cloudaccountwindow.moc"
