#include <support/fakepasswordstore.h>
#include <support/loginserver.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <platform/cloud/cloudsession.h>

#include <QDirIterator>
#include <QSignalSpy>

#include <sys/stat.h>

#include <mutex>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const CloudAccount annsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"ann"_s};
const CloudAccount bobsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"bob"_s};
const QString annsKey = u"ann@db.invalid:5432/tasks"_s;

/// A session on files of a test's own, which starts with an account and a keyring.
struct Desktop
{
    explicit Desktop(const CloudAccount &account, const QMap<QString, QString> &passwords = {})
    {
        keyring.passwords = passwords;
        if (accounts.save(account))
            start();
    }
    void start() { session = std::make_unique<CloudSession>(accounts, home.path(u"c.db"_s), keyring, types); }

    [[nodiscard]] QString state() const
    {
        return session->needsPassword() ? u"needed"_s : session->password().value_or(u"none"_s);
    }
    [[nodiscard]] CloudAccounts accountFile() const
    {
        return CloudAccounts(home.path(u"config/cloud.ini"_s));
    }

    TemporaryHome home;
    CloudAccounts accounts = accountFile();
    FakePasswordStore keyring;
    QList<const RecordType *> types;
    std::unique_ptr<CloudSession> session;
};

/// What the container says to a request: its error, or "done", or nothing where it takes too long.
QString answerOf(CloudSession &session)
{
    auto words = std::make_shared<std::optional<QString>>();
    auto mutex = std::make_shared<std::mutex>();
    const auto note = [=](const std::optional<RecordZone> &, const std::optional<CloudError> &error) {
        const std::lock_guard lock(*mutex);
        *words = error ? error->localizedDescription : u"done"_s;
    };
    session.container().privateCloudDatabase().saveRecordZone({u"tasks"_s}, note);
    const bool answered = QTest::qWaitFor(
        [&] {
            const std::lock_guard lock(*mutex);
            return words->has_value();
        },
        10'000);
    return answered ? **words : QString();
}

} // namespace

class tst_cloudsession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheAccountForTheNextRun_data()
    {
        const Table<CloudAccount> row;
        row("on this machine", CloudAccount{});
        row("server", annsAccount);
        row("several hosts, no protection",
            CloudAccount{u"a.example,b.example"_s, 1, u"täsks; #1"_s, u"ann"_s, TlsMode::Disable});
        row("highest port", CloudAccount{u"::1"_s, 65535, u"tasks"_s, u"ann"_s, TlsMode::Require});
    }
    void keepsTheAccountForTheNextRun()
    {
        const auto [account] = Table<CloudAccount>::cells();
        const TemporaryHome home;
        const QString path = home.path(u"config/cloud.ini"_s);
        QVERIFY(CloudAccounts(path).save(annsAccount));
        QVERIFY(CloudAccounts(path).save(account));
        QCOMPARE(CloudAccounts(path).load(), account);
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, 0600U);
    }

    void readsAnAccountThatWasEditedByHand_data()
    {
        const Table<QByteArray, CloudAccount> row;
        const auto with = [](const QString &host, quint16 port, TlsMode mode = TlsMode::VerifyFull) {
            return CloudAccount{host, port, u"d"_s, u"u"_s, mode};
        };
        row("no port, no protection named", "host=h\ndatabase=d\nuser=u", with(u"h"_s, 5432));
        row("misspelt protection", "host=h\ndatabase=d\nuser=u\ntls=disabled", with(u"h"_s, 5432));
        row("port 0", "host=h\nport=0\ndatabase=d\nuser=u", with(u"h"_s, 5432));
        row("port too high", "host=h\nport=65536\ndatabase=d\nuser=u\ntls=require",
            with(u"h"_s, 5432, TlsMode::Require));
        row("blanks and gaps among hosts", "host= a , ,b,\ndatabase=d\nuser=u", with(u"a,b"_s, 5432));
        row("no database", "host=h\nuser=u", CloudAccount{});
        row("no user", "host=h\ndatabase=d", CloudAccount{});
        row("no host", "database=d\nuser=u\nport=7", CloudAccount{});
    }
    void readsAnAccountThatWasEditedByHand()
    {
        const auto [lines, account] = Table<QByteArray, CloudAccount>::cells();
        const TemporaryHome home;
        TemporaryHome::write(home.path(u"cloud.ini"_s), "[General]\n" + lines + '\n');
        QCOMPARE(CloudAccounts(home.path(u"cloud.ini"_s)).load(), account);
    }

    void asksTheKeyringAtItsStart_data()
    {
        const Table<CloudAccount, bool, QString, QString, bool> row;
        row("has it", annsAccount, true, annsKey, u"secret"_s, true);
        row("has that of another account", annsAccount, true, u"ann@db.invalid:5433/tasks"_s, u"needed"_s,
            true);
        row("there is none", annsAccount, false, annsKey, u"needed"_s, false);
        row("no password is needed", CloudAccount{}, true, annsKey, u"none"_s, true);
    }
    void asksTheKeyringAtItsStart()
    {
        const auto [account, exists, key, state, canRemember] =
            Table<CloudAccount, bool, QString, QString, bool>::cells();
        Desktop desktop(account, {{key, u"secret"_s}});
        desktop.keyring.exists = exists;
        QCOMPARE(desktop.session->needsPassword(), account.isRemote());
        const QSignalSpy changes(desktop.session.get(), &CloudSession::passwordChanged);
        desktop.keyring.answer();
        QCOMPARE(desktop.state(), state);
        QCOMPARE(changes.size(), account.isRemote() ? 1 : 0);
        QCOMPARE(desktop.session->isRemembered(), state == u"secret"_s);
        QCOMPARE(desktop.session->canRemember(), canRemember);
    }

    void heedsNoAnswerThatComesTooLate_data()
    {
        using Act = std::function<void(Desktop &)>;
        const Table<Act, QString> row;
        row(
            "the session is gone", [](Desktop &desktop) { desktop.session.reset(); }, u"gone"_s);
        row(
            "the user has typed it",
            [](Desktop &desktop) { desktop.session->setPassword(u"typed"_s, false); }, u"typed"_s);
        row(
            "the user has typed none", [](Desktop &desktop) { desktop.session->setPassword({}, false); },
            u""_s);
        row(
            "the account is another",
            [](Desktop &desktop) { QVERIFY(desktop.session->setAccount(bobsAccount, std::nullopt, false)); },
            u"needed"_s);
        row(
            "there is no account any more",
            [](Desktop &desktop) { QVERIFY(desktop.session->setAccount({}, std::nullopt, false)); },
            u"none"_s);
    }
    void heedsNoAnswerThatComesTooLate()
    {
        using Act = std::function<void(Desktop &)>;
        const auto [act, state] = Table<Act, QString>::cells();
        Desktop desktop(annsAccount, {{annsKey, u"secret"_s}});
        act(desktop);
        desktop.keyring.answer();
        QCOMPARE(desktop.session ? desktop.state() : u"gone"_s, state);
        QCOMPARE(desktop.keyring.passwords.value(annsKey), u"secret"_s);
    }

    void remembersWhatTheUserWants_data()
    {
        using Act = std::function<void(CloudSession &)>;
        const Table<Act, QString> row;
        const auto account = [](const CloudAccount &whose, const QString &password, bool remember) {
            return [=](CloudSession &session) {
                QVERIFY(session.setAccount(whose, password.isEmpty() ? std::nullopt : std::optional(password),
                                           remember));
            };
        };
        row(
            "another", [](CloudSession &session) { session.setPassword(u"new"_s, true); }, u"new"_s);
        row(
            "no longer", [](CloudSession &session) { session.setPassword(u"new"_s, false); }, u""_s);
        row("another with the account", account(annsAccount, u"new"_s, true), u"new"_s);
        row("no longer with the account", account(annsAccount, u"new"_s, false), u""_s);
        row("no longer, and asked for", account(annsAccount, {}, false), u""_s);
        row("the one it has", account(annsAccount, {}, true), u"old"_s);
        row("while another account is in use", account(bobsAccount, u"new"_s, true), u"old"_s);
        row("while no account is in use", account({}, {}, false), u"old"_s);
        row(
            "an outdated one of an account that comes back",
            [=](CloudSession &session) {
                account({}, {}, false)(session);
                account(annsAccount, u"new"_s, false)(session);
            },
            u""_s);
    }
    void remembersWhatTheUserWants()
    {
        using Act = std::function<void(CloudSession &)>;
        const auto [act, stored] = Table<Act, QString>::cells();
        Desktop desktop(annsAccount, {{annsKey, u"old"_s}});
        desktop.keyring.answer();
        act(*desktop.session);
        desktop.keyring.answer();
        QCOMPARE(desktop.keyring.passwords.value(annsKey), stored);
        desktop.start(); // the next run
        desktop.keyring.answer();
        if (desktop.session->account() == annsAccount)
            QCOMPARE(desktop.state(), stored.isEmpty() ? u"needed"_s : stored);
    }

    void saysWhenTheKeyringTakesNoPassword()
    {
        Desktop desktop(annsAccount);
        desktop.keyring.answer();
        desktop.keyring.exists = false;
        const QSignalSpy failures(desktop.session.get(), &CloudSession::rememberingFailed);
        desktop.session->setPassword(u"secret"_s, true);
        desktop.keyring.answer();
        QCOMPARE(failures.size(), 1);
        QCOMPARE(desktop.state(), u"secret"_s);
        QVERIFY(!desktop.session->isRemembered());
        QVERIFY(!desktop.session->canRemember());
    }

    void changesNothingWhereTheAccountCannotBeSaved()
    {
        Desktop desktop(annsAccount, {{annsKey, u"secret"_s}});
        desktop.keyring.answer();
        const QString folder = desktop.home.path(u"config"_s);
        QVERIFY(QDir(folder).removeRecursively());
        TemporaryHome::write(folder, "in the way");
        QVERIFY(!desktop.session->setAccount(bobsAccount, u"new"_s, true));
        QCOMPARE(desktop.session->account(), annsAccount);
        QCOMPARE(desktop.state(), u"secret"_s);
    }

    void tellsThePasswordToTheServerAlone()
    {
        LoginServer server;
        const QString secret = u"s3cret wörd"_s;
        QByteArray said;
        Desktop desktop({});
        QCOMPARE(answerOf(*desktop.session), u"done"_s);
        said += tracesOf([&] {
            QVERIFY(desktop.session->setAccount(server.account(), secret, true));
            said += answerOf(*desktop.session).toUtf8();
            said += desktop.session->container().description().toUtf8();
        });
        QVERIFY(said.contains("refused"));
        QVERIFY(said.contains("ann@127.0.0.1"));
        QCOMPARE(server.passwords, QStringList{secret});
        desktop.keyring.answer();
        QVERIFY(desktop.session->isRemembered());

        QVERIFY(!said.contains("s3cret"));
        QDirIterator files(desktop.home.path({}), QDir::Files, QDirIterator::Subdirectories);
        QVERIFY(files.hasNext());
        while (files.hasNext())
            QVERIFY(!TemporaryHome::content(files.next()).contains("s3cret"));
    }
};

OBLINO_TEST(tst_cloudsession, QCoreApplication)

#include "tst_cloudsession.moc"
