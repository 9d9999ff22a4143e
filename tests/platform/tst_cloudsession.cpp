#include <support/cloudrequests.h>
#include <support/fakepasswordstore.h>
#include <support/postgresserver.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <platform/cloud/cloudsession.h>

#include <QDirIterator>
#include <QSignalSpy>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const CloudAccount annsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"ann"_s};
const CloudAccount bobsAccount = {.host = u"db.invalid"_s, .database = u"tasks"_s, .user = u"bob"_s};
const QString annsKey = u"ann@db.invalid:5432/tasks"_s;

/// A session on files of a test's own, whose keyring has an old password of Ann's.
struct Desktop
{
    explicit Desktop(const CloudAccount &account = annsAccount)
    {
        keyring.passwords.insert(annsKey, u"old"_s);
        QVERIFY(accounts.save(account));
        session = std::make_unique<CloudSession>(accounts, home.path(u"c.db"_s), keyring,
                                                 QList<const RecordType *>());
    }

    [[nodiscard]] QString state() const
    {
        return session->needsPassword() ? u"needed"_s : session->password().value_or(u"none"_s);
    }

    TemporaryHome home;
    CloudAccounts accounts = CloudAccounts(home.path(u"config/cloud.ini"_s));
    FakePasswordStore keyring;
    std::unique_ptr<CloudSession> session;
};

using Act = std::function<void(Desktop &)>;

Act changeTo(const CloudAccount &account, const std::optional<QString> &password, bool remember)
{
    return [=](Desktop &desktop) { QVERIFY(desktop.session->setAccount(account, password, remember)); };
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
        QCOMPARE(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser),
                 QFile::ReadOwner | QFile::WriteOwner);
    }

    void readsAnAccountThatWasEditedByHand_data()
    {
        const Table<QByteArray, CloudAccount> row;
        const auto with = [](const QString &host, TlsMode mode = TlsMode::VerifyFull) {
            return CloudAccount{host, 5432, u"d"_s, u"u"_s, mode};
        };
        row("misspelt protection, no port", "host=h\ndatabase=d\nuser=u\ntls=disabled", with(u"h"_s));
        row("port 0", "host=h\nport=0\ndatabase=d\nuser=u", with(u"h"_s));
        row("port too high", "host=h\nport=65536\ndatabase=d\nuser=u\ntls=require",
            with(u"h"_s, TlsMode::Require));
        row("blanks and gaps among hosts", "host= a , ,b,\ndatabase=d\nuser=u", with(u"a,b"_s));
        row("no database", "host=h\nuser=u", CloudAccount{});
    }
    void readsAnAccountThatWasEditedByHand()
    {
        const auto [lines, account] = Table<QByteArray, CloudAccount>::cells();
        const TemporaryHome home;
        TemporaryHome::write(home.path(u"cloud.ini"_s), "[General]\n" + lines + '\n');
        QCOMPARE(CloudAccounts(home.path(u"cloud.ini"_s)).load(), account);
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
        row("too late: the account is another", false, changeTo(bobsAccount, {}, false), u"needed"_s,
            u"old"_s);
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
        Desktop desktop;
        QVERIFY(desktop.session->needsPassword());
        if (isAnswered)
            desktop.keyring.answer();
        act(desktop);
        desktop.keyring.answer();
        QCOMPARE(desktop.session ? desktop.state() : u"gone"_s, state);
        QCOMPARE(desktop.keyring.passwords.value(annsKey), stored);
    }

    void saysWhenTheKeyringTakesNoPassword()
    {
        Desktop desktop;
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
        Desktop desktop;
        desktop.keyring.answer();
        const QString folder = desktop.home.path(u"config"_s);
        QVERIFY(QDir(folder).removeRecursively());
        TemporaryHome::write(folder, "in the way");
        QVERIFY(!desktop.session->setAccount(bobsAccount, u"new"_s, true));
        QCOMPARE(desktop.session->account(), annsAccount);
        QCOMPARE(desktop.state(), u"old"_s);
    }

    void tellsThePasswordToTheServerAlone()
    {
        if (!PostgresServer::isInstalled())
            QSKIP("PostgreSQL is not installed.");
        PostgresServer server;
        const RecordPlace place = server.newPlace();
        Desktop desktop(CloudAccount{});
        desktop.keyring.passwords.clear();
        CloudSession &session = *desktop.session;
        QByteArray said;
        said += tracesOf([&] {
            QVERIFY(session.setAccount(place.account, u"a wrong secret"_s, true));
            said += save(session.container(), note(u"one"_s)).toUtf8();
            QVERIFY(session.setAccount(place.account, place.password, true));
            QCOMPARE(save(session.container(), note(u"one"_s)), u""_s);
            said += session.container().description().toUtf8();
        });
        desktop.keyring.answer();
        QCOMPARE(desktop.keyring.passwords.values(), QStringList(place.password));
        QVERIFY(!said.contains("secret"));
        QVERIFY(said.contains("refused") && said.contains("anna@127.0.0.1"));
        QDirIterator files(desktop.home.path({}), QDir::Files, QDirIterator::Subdirectories);
        QVERIFY(files.hasNext());
        while (files.hasNext())
            QVERIFY(!TemporaryHome::content(files.next()).contains("secret"));
    }
};

OBLINO_TEST(tst_cloudsession, QCoreApplication)

#include "tst_cloudsession.moc"
