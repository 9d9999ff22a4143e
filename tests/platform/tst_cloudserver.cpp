#include <support/cloudrequests.h>
#include <support/postgresserver.h>
#include <support/table.h>
#include <support/testmain.h>

#include <platform/cloud/sqlcloudcontainer.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>

#include <atomic>
#include <csignal>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString table = u"\"cloud_private_Note\""_s;

/// Keeps the server's side of a connection from answering; the connection stays.
class Silence
{
public:
    explicit Silence(const RecordPlace &place)
        : m_process(runAt(place, u"SELECT pid FROM pg_stat_activity WHERE pid <> pg_backend_pid() "
                                 "AND datname = current_database()"_s)
                        .toInt())
    {
        if (m_process <= 0 || ::kill(m_process, SIGSTOP) != 0)
            throw std::runtime_error("There is no connection.");
    }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;
    ~Silence() { ::kill(m_process, SIGCONT); }

private:
    pid_t m_process;
};

} // namespace

/// Cloud records on a PostgreSQL server, and what can become of the server.
class tst_cloudserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!PostgresServer::isInstalled())
            QSKIP("PostgreSQL is not installed.");
        m_server = std::make_unique<PostgresServer>();
        qputenv("HOME", QFile::encodeName(m_home.path()));
    }
    void init() { m_place = m_server->newPlace(); }

    void tellsWhetherTheAccountCanBeUsed_data()
    {
        const QString user = PostgresServer::user;
        const QString stranger = PostgresServer::stranger;
        const QString password = PostgresServer::password;
        const QString nothing = u"SELECT 1"_s;
        const auto none = AccountStatus::NoAccount;
        const auto restricted = AccountStatus::Restricted;
        const auto unclear = AccountStatus::CouldNotDetermine;
        const Table<QString, QString, QString, AccountStatus, QString> row;
        row("all is well", user, password, nothing, AccountStatus::Available, {});
        row("wrong password", user, u"secret"_s, nothing, none,
            u"The server refused the user name or the password."_s);
        row("no password", user, {}, nothing, unclear, u"no password supplied"_s);
        row("no right to connect", stranger, password, u"REVOKE CONNECT ON DATABASE %1 FROM PUBLIC"_s,
            restricted, u"The user has no right to use the database cloud records"_s);
        row("no right to read", stranger, password, nothing, restricted, u"permission denied"_s);
        row("no right to write", stranger, password,
            u"GRANT SELECT ON ALL TABLES IN SCHEMA public TO berta"_s, restricted, u"permission denied"_s);
        row("database of a standby", user, password,
            u"ALTER DATABASE %1 SET default_transaction_read_only = on"_s, unclear, u"read-only"_s);
    }
    void tellsWhetherTheAccountCanBeUsed()
    {
        const auto [user, password, statement, status, words] =
            Table<QString, QString, QString, AccountStatus, QString>::cells();
        QCOMPARE(save(*newContainer(), note(u"one"_s)), u""_s);
        runAt(m_place, QString(statement).replace(u"%1"_s, quotedName(m_place.account.database)));
        m_place.account.user = user;
        m_place.password = password;
        const auto container = newContainer();
        QCOMPARE(statusOf(*container), status);
        const QString why = save(*container, note(u"two"_s));
        QVERIFY2(why.contains(words) && why.isEmpty() == words.isEmpty(), qPrintable(why));
        const std::atomic<bool> cancelled = false;
        QCOMPARE(checkPlace(m_place, {&noteType()}, cancelled).has_value(), !words.isEmpty());
    }

    void saysWhichDatabaseIsMissing()
    {
        m_place.account.database = u"n'one"_s;
        QCOMPARE(save(*newContainer(), note(u"one"_s)), u"The server has no database named n'one."_s);
    }

    void connectsByTlsToTheServerOfThatName_data()
    {
        const Table<QString, TlsMode, bool, bool> row;
        row("the name in its certificate", u"localhost"_s, TlsMode::VerifyFull, true, true);
        row("another name", u"127.0.0.1"_s, TlsMode::VerifyFull, true, false);
        row("nobody vouches for it", u"localhost"_s, TlsMode::VerifyFull, false, false);
        row("unless that does not matter", u"127.0.0.1"_s, TlsMode::Require, false, true);
    }
    void connectsByTlsToTheServerOfThatName()
    {
        const auto [host, mode, isTrusted, connects] = Table<QString, TlsMode, bool, bool>::cells();
        const QDir folder(m_home.filePath(u".postgresql"_s));
        QVERIFY(folder.mkpath(u"."_s));
        const QString trusted = folder.filePath(u"root.crt"_s);
        QFile::remove(trusted);
        QVERIFY(!isTrusted || QFile::copy(m_server->rootCertificate(), trusted));
        RecordPlace place = m_place;
        place.account.host = host;
        place.account.tlsMode = mode;
        SqlCloudContainer container(place, {&noteType()});
        const QString why = save(container, note(u"one"_s));
        QVERIFY2(why.isEmpty() == connects, qPrintable(why));
        QCOMPARE(why.contains(u"certificate"_s), !connects);
        const QString encrypted = u"SELECT count(*) FROM pg_stat_ssl JOIN pg_stat_activity USING (pid) "
                                  "WHERE ssl AND datname = current_database() AND pid <> pg_backend_pid()"_s;
        QCOMPARE(runAt(m_place, encrypted).toInt(), connects ? 1 : 0);
    }

    void usesASchemaOfTheUsersOwn()
    {
        runAt(m_place, u"CREATE SCHEMA %1"_s.arg(PostgresServer::user));
        for (const QString &name : {u"first"_s, u"second"_s}) // by two programs, one after the other
            QCOMPARE(save(*newContainer(), note(name)), u""_s);
        QCOMPARE(namesIn(*newContainer()), u"first second"_s);
    }

    void givesNoPartOfAnAnswerThatBreaksOff()
    {
        m_place = m_server->newPlace(u"ENCODING 'WIN1252' TEMPLATE template0"_s);
        const auto container = newContainer();
        for (const QString &name : {u"one"_s, u"two"_s, u"three"_s})
            QCOMPARE(save(*container, note(name, u"text"_s, u"ä"_s)), u""_s);
        // A character that cannot be given back, which shows when the first record is already under way.
        runAt(m_place, u"UPDATE %1 SET text = chr(129) WHERE \"recordName\" = 'two'"_s.arg(table));
        const auto [records, error] = find(*container);
        QCOMPARE(records.size(), 0);
        QVERIFY2(wordsOf(error).contains(u"no equivalent"_s), qPrintable(wordsOf(error)));
    }

    void triesAgainAfterAConflict()
    {
        runAt(m_place, u"ALTER DATABASE \"%1\" SET default_transaction_isolation = 'serializable'"_s.arg(
                           m_place.account.database));
        const auto container = newContainer();
        QCOMPARE(save(*container, note(u"one"_s, u"text"_s, u"old"_s)), u""_s);
        SecondConnection other(m_place);
        other.run(u"BEGIN"_s);
        other.run(u"UPDATE %1 SET text = 'other'"_s.arg(table));
        std::atomic<int> failures = 0;
        container->privateCloudDatabase().saveRecord(
            note(u"one"_s, u"text"_s, u"new"_s),
            [&](const auto &, const CloudFailure &failure) { failures += failure ? 1 : 0; });
        const QString waiting = u"SELECT count(*) FROM pg_stat_activity WHERE wait_event_type = 'Lock' "
                                "AND datname = current_database()"_s;
        QTRY_COMPARE(runAt(m_place, waiting).toInt(), 1);
        other.run(u"COMMIT"_s); // which is too late for whoever has seen the old text
        QCOMPARE(std::get<0>(find(*container)).first().value(u"text"_s), QVariant(u"new"_s));
        QCOMPARE(failures.load(), 0);
    }

    void opensADroppedConnectionAgain()
    {
        const auto container = newContainer();
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
        runAt(m_place, u"SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                       "WHERE datname = current_database() AND pid <> pg_backend_pid()"_s);
        QCOMPARE(save(*container, note(u"two"_s)), u""_s);
        QCOMPARE(namesIn(*container), u"one two"_s);
    }

    void goesOnWhenTheServerIsBack()
    {
        const auto container = newContainer();
        constexpr int most = 20'000;
        std::atomic<int> saved = 0;
        std::atomic<int> failed = 0;
        for (int i = 0; i < most; ++i)
            container->privateCloudDatabase().saveRecord(
                note(QString::number(i)),
                [&](const auto &, const CloudFailure &failure) { ++(failure ? failed : saved); });
        QTRY_VERIFY(saved > 0);
        m_server->stop();
        QCOMPARE(statusOf(*container), AccountStatus::CouldNotDetermine);
        QCOMPARE(saved + failed, most);
        QVERIFY(failed > 0);

        m_server->start();
        QCOMPARE(save(*container, note(u"after"_s)), u""_s);
        // A transaction may have been committed without word of it.
        QVERIFY(std::get<0>(find(*container)).size() > saved);
    }

    void givesUpOnAServerThatDoesNotAnswer()
    {
        const auto container = newContainer(300ms);
        QCOMPARE(statusOf(*container), AccountStatus::Available);
        {
            const Silence silence(m_place);
            QCOMPARE(save(*container, note(u"one"_s)), u"The connection to the server 127.0.0.1 is lost."_s);
        }
        QCOMPARE(save(*container, note(u"two"_s)), u""_s);
    }

    void movesAwayFromAServerThatDoesNotAnswer()
    {
        const auto container = newContainer();
        QCOMPARE(statusOf(*container), AccountStatus::Available);
        const Silence silence(m_place);
        container->setPlace({.file = m_home.filePath(u"cloud.sqlite"_s)});
        QCOMPARE(statusOf(*container), AccountStatus::Available);
    }

    void endsWhileTheServerDoesNotAnswer_data()
    {
        const Table<bool> row;
        row("in a request", true);
        row("while signing in", false);
    }
    void endsWhileTheServerDoesNotAnswer()
    {
        const auto [isConnected] = Table<bool>::cells();
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        const RecordPlace place = m_place;
        m_place.account.port = isConnected ? place.account.port : silent.serverPort();
        auto container = newContainer();
        std::optional<Silence> silence;
        if (isConnected) {
            QCOMPARE(statusOf(*container), AccountStatus::Available);
            silence.emplace(place);
        }
        std::atomic<int> answers = 0;
        for (int i = 0; i < 100; ++i)
            container->privateCloudDatabase().saveRecord(note(QString::number(i)),
                                                         [&](const auto &, const auto &) { ++answers; });
        QElapsedTimer time;
        time.start();
        container.reset();
        QVERIFY2(time.elapsed() < 2100, qPrintable(QString::number(time.elapsed())));
        QCOMPARE(answers.load(), 0);
    }

private:
    std::unique_ptr<SqlCloudContainer> newContainer(std::chrono::milliseconds patience = 20s) const
    {
        return std::make_unique<SqlCloudContainer>(m_place, QList{&noteType()}, patience);
    }

    QTemporaryDir m_home;
    std::unique_ptr<PostgresServer> m_server;
    RecordPlace m_place;
};

OBLINO_TEST(tst_cloudserver, QCoreApplication)

#include "tst_cloudserver.moc"
