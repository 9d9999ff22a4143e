#include <support/cloudrequests.h>
#include <support/postgresserver.h>
#include <support/table.h>
#include <support/testmain.h>

#include <platform/cloud/sqlcloudcontainer.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <optional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString table = u"\"cloud_private_Note\""_s;
const QString stranger = u"berta"_s; // who owns no database

} // namespace

/// Cloud records on a PostgreSQL server, and what can become of the server.
class tst_cloudserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void tellsWhetherTheAccountCanBeUsed_data();
    void tellsWhetherTheAccountCanBeUsed();
    void connectsByTlsToTheServerOfThatName_data();
    void connectsByTlsToTheServerOfThatName();
    void usesASchemaOfTheUsersOwn();
    void refusesTextThatTheServerCannotEncode();
    void triesAgainAfterAConflict();
    void opensADroppedConnectionAgain();
    void goesOnWhenTheServerIsBack();
    void givesUpOnASuspendedServer();
    void movesAwayFromASuspendedServer();
    void endsWhileTheServerIsSuspended_data();
    void endsWhileTheServerIsSuspended();

private:
    std::unique_ptr<SqlCloudContainer> newContainer(std::chrono::milliseconds patience = 20s) const
    {
        return std::make_unique<SqlCloudContainer>(m_place, QList{&noteType()}, patience);
    }

    QTemporaryDir m_home;
    std::unique_ptr<PostgresServer> m_server;
    RecordPlace m_place;
};

void tst_cloudserver::initTestCase()
{
    if (!PostgresServer::isInstalled())
        QSKIP("PostgreSQL is not installed.");
    m_server = std::make_unique<PostgresServer>();
    qputenv("HOME", QFile::encodeName(m_home.path()));
    const RecordPlace place = m_server->newPlace();
    m_server->run(place, u"CREATE ROLE %1 LOGIN PASSWORD '%2'"_s.arg(
                             stranger, QString(PostgresServer::password).replace(u'\'', u"''"_s)));
}

void tst_cloudserver::init()
{
    m_place = m_server->newPlace();
}

using Change = std::function<void(PostgresServer &, RecordPlace &)>;

void tst_cloudserver::tellsWhetherTheAccountCanBeUsed_data()
{
    const auto alter = [](const QString &statement) {
        return [statement](PostgresServer &server, RecordPlace &place) {
            place.account.user = stranger;
            const QString database = u'"' + place.account.database + u'"';
            server.run(place, statement.contains(u"%1"_s) ? statement.arg(database) : statement);
        };
    };
    const auto none = AccountStatus::NoAccount;
    const auto restricted = AccountStatus::Restricted;
    const auto unclear = AccountStatus::CouldNotDetermine;
    const Table<Change, AccountStatus, QString> row;
    row("all is well", [](auto &, auto &) {}, AccountStatus::Available, {});
    row(
        "wrong password", [](auto &, auto &place) { place.password = u"secret"_s; }, none, u"refused"_s);
    row(
        "no password", [](auto &, auto &place) { place.password.clear(); }, unclear, u"password"_s);
    row(
        "unknown user", [](auto &, auto &place) { place.account.user = u"nobody"_s; }, none, u"refused"_s);
    row(
        "no such database", [](auto &, auto &place) { place.account.database = u"n'one"_s; }, unclear,
        u"no database named n'one"_s);
    row(
        "no such server", [](auto &, auto &place) { place.account.port = 1; }, unclear,
        u"cannot be reached on port 1"_s);
    row("no right to connect", alter(u"REVOKE CONNECT ON DATABASE %1 FROM PUBLIC"_s), restricted,
        u"no right to use the database"_s);
    row("no right to make tables", alter(u"SELECT 1"_s), restricted, u"permission denied"_s);
    row("database of a standby", alter(u"ALTER DATABASE %1 SET default_transaction_read_only = on"_s),
        unclear, u"read-only"_s);
    row(
        "no right to write",
        [](PostgresServer &server, RecordPlace &place) {
            QCOMPARE(wordsOf(save(*std::make_unique<SqlCloudContainer>(place, QList{&noteType()}),
                                  note(u"one"_s))),
                     u""_s);
            server.run(place, u"GRANT SELECT ON ALL TABLES IN SCHEMA public TO "_s + stranger);
            place.account.user = stranger;
        },
        restricted, u"permission denied"_s);
}

void tst_cloudserver::tellsWhetherTheAccountCanBeUsed()
{
    const auto [change, status, words] = Table<Change, AccountStatus, QString>::cells();
    change(*m_server, m_place);
    const auto container = newContainer();
    QCOMPARE(statusOf(*container), status);
    const QString why = wordsOf(save(*container, note(u"two"_s)));
    QVERIFY2(why.contains(words) && why.isEmpty() == words.isEmpty(), qPrintable(why));
    const std::atomic<bool> cancelled = false;
    const CloudFailure found = checkPlace(m_place, {&noteType()}, cancelled);
    QCOMPARE(found.has_value(), status != AccountStatus::Available);
}

void tst_cloudserver::connectsByTlsToTheServerOfThatName_data()
{
    const Table<QString, TlsMode, bool, bool> row;
    row("the name in its certificate", u"localhost"_s, TlsMode::VerifyFull, true, true);
    row("another name", u"127.0.0.1"_s, TlsMode::VerifyFull, true, false);
    row("nobody vouches for it", u"localhost"_s, TlsMode::VerifyFull, false, false);
    row("unless that does not matter", u"127.0.0.1"_s, TlsMode::Require, false, true);
}

void tst_cloudserver::connectsByTlsToTheServerOfThatName()
{
    const auto [host, mode, isTrusted, connects] = Table<QString, TlsMode, bool, bool>::cells();
    const QDir folder(m_home.filePath(u".postgresql"_s));
    QVERIFY(folder.mkpath(u"."_s));
    if (isTrusted)
        QVERIFY(QFile::copy(m_server->rootCertificate(), folder.filePath(u"root.crt"_s)));
    m_place.account.host = host;
    m_place.account.tlsMode = mode;
    const auto container = newContainer();
    const QString why = wordsOf(save(*container, note(u"one"_s)));
    QDir(folder).removeRecursively();
    QVERIFY2(why.isEmpty() == connects, qPrintable(why));
    QCOMPARE(why.contains(u"certificate"_s), !connects);
    const QString encrypted = u"SELECT count(*) FROM pg_stat_ssl JOIN pg_stat_activity USING (pid) "
                              "WHERE ssl AND datname = current_database()"_s;
    QCOMPARE(m_server->run(m_place, encrypted).first().first().toInt(), connects ? 1 : 0);
}

void tst_cloudserver::usesASchemaOfTheUsersOwn()
{
    m_server->run(m_place, u"CREATE SCHEMA %1 AUTHORIZATION %1"_s.arg(PostgresServer::user));
    for (const QString &name : {u"first"_s, u"second"_s}) // by two programs, one after the other
        QCOMPARE(wordsOf(save(*newContainer(), note(name))), u""_s);
    QCOMPARE(namesIn(*newContainer()), QStringList({u"first"_s, u"second"_s}));
}

void tst_cloudserver::refusesTextThatTheServerCannotEncode()
{
    m_place = m_server->newPlace(u"ENCODING 'WIN1252' TEMPLATE template0"_s);
    const auto container = newContainer();
    QVERIFY(save(*container, note(u"zero"_s, u"text"_s, u"\U0001F600"_s)));
    for (const QString &name : {u"one"_s, u"two"_s, u"three"_s})
        QCOMPARE(wordsOf(save(*container, note(name, u"text"_s, u"ä"_s))), u""_s);
    QCOMPARE(std::get<0>(find(*container)).first().value(u"text"_s), QVariant(u"ä"_s));
    // Nor can it give back every character; that shows when the first record is already under way.
    m_server->run(m_place, u"UPDATE %1 SET text = chr(129) WHERE \"recordName\" = 'two'"_s.arg(table));
    std::atomic<bool> isSaved = false;
    std::optional<Pause> pause(std::in_place, *container);
    container->privateCloudDatabase().saveRecord(
        note(u"four"_s), [&](const auto &, const CloudFailure &failure) { isSaved = !failure; });
    const auto [records, error] = answerTo<QList<CloudRecord>, CloudFailure>([&](const auto &handler) {
        container->privateCloudDatabase().performQuery({&noteType(), RecordPredicate::all()}, handler);
        pause.reset();
    });
    QCOMPARE(namesOf(records), QStringList());
    QVERIFY2(wordsOf(error).contains(u"no equivalent"_s), qPrintable(wordsOf(error)));
    QVERIFY(isSaved);
    QCOMPARE(m_server->run(m_place, u"SELECT count(*) FROM "_s + table).first().first().toInt(), 4);
}

void tst_cloudserver::triesAgainAfterAConflict()
{
    m_server->run(m_place, u"ALTER DATABASE \"%1\" SET default_transaction_isolation = 'serializable'"_s.arg(
                               m_place.account.database));
    const auto container = newContainer();
    QCOMPARE(wordsOf(save(*container, note(u"one"_s, u"text"_s, u"old"_s))), u""_s);
    SecondConnection other = m_server->connectTo(m_place);
    other.run(u"BEGIN"_s);
    other.run(u"UPDATE %1 SET text = 'other'"_s.arg(table));

    const auto answer = std::make_shared<std::promise<QString>>();
    std::future<QString> why = answer->get_future();
    container->privateCloudDatabase().saveRecord(
        note(u"one"_s, u"text"_s, u"new"_s),
        [answer](const auto &, const CloudFailure &failure) { answer->set_value(wordsOf(failure)); });
    const QString waiting = u"SELECT count(*) FROM pg_stat_activity WHERE wait_event_type = 'Lock' "
                            "AND datname = current_database()"_s;
    QTRY_COMPARE(m_server->run(m_place, waiting).first().first().toInt(), 1);
    other.run(u"COMMIT"_s); // which is too late for whoever has seen the old text
    QCOMPARE(why.wait_for(20s), std::future_status::ready);
    QCOMPARE(why.get(), u""_s);
    QCOMPARE(std::get<0>(find(*container)).first().value(u"text"_s), QVariant(u"new"_s));
}

void tst_cloudserver::opensADroppedConnectionAgain()
{
    const auto container = newContainer();
    QCOMPARE(wordsOf(save(*container, note(u"one"_s))), u""_s);
    for (const QString &name : {u"two"_s, u"three"_s}) {
        m_server->run(m_place, u"SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                               "WHERE datname = current_database() AND pid <> pg_backend_pid()"_s);
        QCOMPARE(wordsOf(save(*container, note(name))), u""_s);
    }
    QCOMPARE(namesIn(*container), QStringList({u"one"_s, u"two"_s, u"three"_s}));
}

void tst_cloudserver::goesOnWhenTheServerIsBack()
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
    QTRY_COMPARE_WITH_TIMEOUT(saved + failed, most, 20000);
    QVERIFY(failed > 0);
    QCOMPARE(statusOf(*container), AccountStatus::CouldNotDetermine);

    m_server->start();
    QCOMPARE(wordsOf(save(*container, note(u"after"_s))), u""_s);
    // A transaction may have been committed without word of it.
    const qsizetype found = namesIn(*container).size();
    QVERIFY2(found > saved && found <= most + 1, qPrintable(u"%1 of %2"_s.arg(found).arg(saved.load())));
}

void tst_cloudserver::givesUpOnASuspendedServer()
{
    const auto container = newContainer(300ms);
    QCOMPARE(statusOf(*container), AccountStatus::Available);
    m_server->suspend();
    QElapsedTimer time;
    time.start();
    const QString why = wordsOf(save(*container, note(u"one"_s)));
    const qint64 taken = time.elapsed();
    m_server->resume();
    QCOMPARE(why, u"The connection to the server 127.0.0.1 is lost."_s);
    QVERIFY2(taken >= 300 && taken < 3000, qPrintable(QString::number(taken)));
    QCOMPARE(wordsOf(save(*container, note(u"two"_s))), u""_s);
}

void tst_cloudserver::movesAwayFromASuspendedServer()
{
    const auto container = newContainer();
    QCOMPARE(statusOf(*container), AccountStatus::Available);
    m_server->suspend();
    QElapsedTimer time;
    time.start();
    container->setPlace({.file = m_home.filePath(u"cloud.sqlite"_s)});
    const AccountStatus status = statusOf(*container);
    const qint64 taken = time.elapsed();
    m_server->resume();
    QCOMPARE(status, AccountStatus::Available);
    QVERIFY2(taken < 3000, qPrintable(QString::number(taken)));
}

void tst_cloudserver::endsWhileTheServerIsSuspended_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::newRow("in a request") << true;
    QTest::newRow("while signing in") << false;
}

void tst_cloudserver::endsWhileTheServerIsSuspended()
{
    QFETCH(bool, isConnected);
    auto container = newContainer();
    if (isConnected)
        QCOMPARE(statusOf(*container), AccountStatus::Available);
    m_server->suspend();
    std::atomic<int> answers = 0;
    for (int i = 0; i < 100; ++i)
        container->privateCloudDatabase().saveRecord(note(QString::number(i)),
                                                     [&](const auto &, const auto &) { ++answers; });
    QElapsedTimer time;
    time.start();
    container.reset();
    const qint64 taken = time.elapsed();
    m_server->resume();
    QVERIFY2(taken < 2100, qPrintable(QString::number(taken)));
    QCOMPARE(answers.load(), 0);
}

OBLINO_TEST(tst_cloudserver, QCoreApplication)

#include "tst_cloudserver.moc"
