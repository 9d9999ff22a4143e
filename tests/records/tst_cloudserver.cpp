#include <support/cloudrequests.h>
#include <support/postgresserver.h>
#include <support/test.h>

#include <records/sqlcloudcontainer.h>

namespace {

const QString table = u"\"cloud_private_Note\""_s;
const QString lock = u"BEGIN; LOCK TABLE "_s + table; // nobody else is answered then

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
        const QString password = PostgresServer::password;
        const QString nothing = u"SELECT 1"_s;
        const Table<bool, QString, QString, AccountStatus, QString> row;
        row("all is well", true, password, nothing, AccountStatus::Available, {});
        row("wrong password", true, u"secret"_s, nothing, AccountStatus::NoAccount,
            u"Wrong password: the server refused the user name or the password."_s);
        row("no such database", true, password, nothing, AccountStatus::CouldNotDetermine,
            u"The server has no database named n'one."_s);
        row("no right to connect", false, password, u"REVOKE CONNECT ON DATABASE \"%1\" FROM PUBLIC"_s,
            AccountStatus::Restricted, u"The user has no right to use the database cloud records"_s);
        row("no right to write", false, password, u"GRANT SELECT ON ALL TABLES IN SCHEMA public TO PUBLIC"_s,
            AccountStatus::Restricted, u"permission denied"_s);
    }
    void tellsWhetherTheAccountCanBeUsed()
    {
        const auto [isOwner, password, statement, status, words] =
            Table<bool, QString, QString, AccountStatus, QString>::cells();
        QCOMPARE(save(*newContainer(), note(u"one"_s)), u""_s);
        runAt(m_place, QString(statement).replace(u"%1"_s, m_place.account.database));
        m_place.account.user = isOwner ? PostgresServer::user : PostgresServer::stranger;
        m_place.password = password;
        if (words.contains(u"no database"_s))
            m_place.account.database = u"n'one"_s;
        const auto container = newContainer();
        const auto [found, error, reason] = answerTo<AccountStatus, CloudFailure, QString>(
            [&](auto handler) { container->accountStatus(handler); });
        QCOMPARE(found, status);
        QVERIFY2(reason.contains(words) && reason.isEmpty() == words.isEmpty(), qPrintable(reason));
        const QString why = save(*container, note(u"two"_s));
        QVERIFY2(why.contains(words) && why.isEmpty() == words.isEmpty(), qPrintable(why));
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
        m_place.account.host = host;
        m_place.account.tlsMode = mode;
        const QString why = save(*newContainer(), note(u"one"_s));
        QVERIFY2(why.isEmpty() == connects, qPrintable(why));
        QCOMPARE(why.contains(u"certificate"_s), !connects);
    }

    void triesAgainAfterAConflict()
    {
        const auto container = newContainer();
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
        runAt(m_place, u"CREATE SEQUENCE attempts"_s);
        runAt(m_place, u"CREATE FUNCTION collide() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
                       "CASE nextval('attempts') WHEN 1 THEN RAISE SQLSTATE '40001'; "
                       "WHEN 2 THEN RAISE SQLSTATE '40P01'; ELSE RETURN new; END CASE; END $$"_s);
        runAt(m_place,
              u"CREATE TRIGGER collision BEFORE INSERT ON %1 EXECUTE FUNCTION collide()"_s.arg(table));
        QCOMPARE(save(*container, note(u"two"_s)), u""_s);
        QCOMPARE(namesIn(*container), u"one two"_s);
    }

    void goesOnWhenTheServerIsBack()
    {
        const auto container = newContainer();
        const auto answers = saveMany(*container, 20'000);
        QTRY_VERIFY(answers->good > 0);
        m_server->stop();
        QCOMPARE(statusOf(*container), AccountStatus::CouldNotDetermine);
        QCOMPARE(answers->good + answers->bad, 20'000);
        QVERIFY(answers->bad > 0);
        QVERIFY(namesIn(*container).startsWith(u"The server 127.0.0.1 cannot be reached on port"_s));
        m_server->start();
        QCOMPARE(save(*container, note(u"after"_s)), u""_s);
        // A transaction may have been committed without word of it.
        QVERIFY(std::get<0>(find(*container)).size() > answers->good);
    }

    void givesUpWhenTheServerDoesNotAnswer()
    {
        const auto container = newContainer(300ms);
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
        SecondConnection other(m_place);
        other.run(lock);
        QCOMPARE(save(*container, note(u"one"_s)), u"The connection to the server 127.0.0.1 is lost."_s);
        other.run(u"COMMIT"_s);
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
    }

    void endsWhileTheServerDoesNotAnswer()
    {
        auto container = newContainer();
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
        SecondConnection other(m_place);
        other.run(lock);
        const auto answers = saveMany(*container, 10);
        QElapsedTimer time;
        time.start();
        container.reset();
        QVERIFY2(time.elapsed() < 2100, qPrintable(QString::number(time.elapsed())));
        QTRY_COMPARE(answers.use_count(), 1);
        QCOMPARE(answers->good + answers->bad, 0);
    }

private:
    std::unique_ptr<SqlCloudContainer> newContainer(std::chrono::milliseconds patience = 20s) const
    {
        return std::make_unique<SqlCloudContainer>(m_place, QList{&noteType()}, patience);
    }

    QTemporaryDir m_home;
    std::unique_ptr<PostgresServer> m_server;
    StoreLocation m_place;
};

OBLINO_TEST(tst_cloudserver, QCoreApplication)

#include "tst_cloudserver.moc"
