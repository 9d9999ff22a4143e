#include <records/recordstore.h>

#include <files/privatefiles.h>
#include <records/postgreslibrary.h>
#include <records/postgresprobe.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <QStringList>
#include <QUuid>

#include <unistd.h>

#include <algorithm>

Q_DECLARE_OPAQUE_POINTER(PGconn *) // which QPSQL gives as its handle

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr int version = 1; // of the form of all tables
constexpr auto loginPatience = 10s;
constexpr int sqliteBusy = 5;
const QString versions = QStringLiteral("cloud_record_types");

QString words(const char *text)
{
    return QCoreApplication::translate("CloudStore", text);
}

QString connectOptions(const CloudAccount &account)
{
    return QStringLiteral("sslmode=%1;sslrootcert='%2';connect_timeout=10;tcp_user_timeout=15000;"
                          "target_session_attrs=read-write")
        .arg(wordOf(account.tlsMode), rootCertificates(account.tlsMode));
}

} // namespace

QString StoreLocation::description() const
{
    return account.isRemote() ? QStringLiteral("%1@%2/%3").arg(account.user, account.host, account.database)
                              : file;
}

RecordStore::RecordStore(StoreLocation place, const std::atomic<bool> &cancelled)
    : m_place(std::move(place))
    , m_cancelled(cancelled)
{
}

RecordStore::~RecordStore()
{
    close();
}

RecordStore::Error RecordStore::open()
{
    if (isOpen())
        return std::nullopt;
    close();
    m_connection = QStringLiteral("cloud") + QUuid::createUuid().toString();
    Error error = m_place.account.isRemote() ? openServer() : openFile();
    if (error)
        close();
    return error;
}

RecordStore::Error RecordStore::openFile()
{
    if (const QString why = makePrivateFile(m_place.file); !why.isEmpty())
        return CloudError{CloudError::Code::Other, m_place.file + QLatin1String(": ") + why};
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    database.setDatabaseName(m_place.file);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!database.open())
        return errorOf(database.lastError());
    Error error = run(QStringLiteral("PRAGMA synchronous = FULL"));
    // What is deleted shall not stay legible in the file.
    return error ? error : run(QStringLiteral("PRAGMA secure_delete = ON"));
}

RecordStore::Error RecordStore::openServer()
{
    const CloudAccount &account = m_place.account;
    if (Error error = probePostgres(account, m_place.password, loginPatience, m_cancelled))
        return error;
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_connection);
    database.setHostName(account.host);
    database.setPort(account.port);
    database.setDatabaseName(account.database);
    database.setUserName(account.user);
    database.setPassword(m_place.password);
    database.setConnectOptions(connectOptions(account));
    return database.open() ? std::nullopt : errorOf(database.lastError());
}

void RecordStore::close()
{
    m_prepared.clear();
    m_rightsChecks.clear();
    if (QSqlDatabase::contains(m_connection))
        QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
}

bool RecordStore::isOpen() const
{
    return QSqlDatabase::contains(m_connection) && QSqlDatabase::database(m_connection, false).isOpen();
}

int RecordStore::duplicateSocket() const
{
    if (!m_place.account.isRemote() || !isOpen())
        return -1;
    const QVariant handle = QSqlDatabase::database(m_connection, false).driver()->handle();
    const auto *connection = handle.value<PGconn *>();
    const PostgresLibrary *pq = PostgresLibrary::get();
    return connection && pq ? ::dup(pq->socket(connection)) : -1;
}

// Of two programs that make tables at once one fails, and finds them when it looks again.
RecordStore::Error RecordStore::prepare(const RecordSql &sql)
{
    if (m_rightsChecks.contains(sql.tableName()))
        return std::nullopt;
    const auto look = [&] { return std::pair(hasTable(versions), hasTable(sql.tableName())); };
    for (auto seen = look();;) {
        const auto [hasVersions, isKnown] = seen;
        Error error = isKnown ? checkVersion(sql) : create(sql, !hasVersions);
        if (!error)
            break;
        if (const auto now = look(); !isKnown && now != seen)
            seen = now;
        else
            return error;
    }
    m_rightsChecks.insert(sql.tableName(), sql.rightsCheck());
    return std::nullopt;
}

// As statements see it: QSqlDatabase::tables() gives tables of a schema of the user's own another name.
bool RecordStore::hasTable(const QString &name) const
{
    return !QSqlDatabase::database(m_connection, false).record(quotedName(name)).isEmpty();
}

RecordStore::Error RecordStore::create(const RecordSql &sql, bool withVersions)
{
    QStringList statements = sql.creation();
    if (withVersions)
        statements.prepend(QStringLiteral("CREATE TABLE %1 (name TEXT PRIMARY KEY, version BIGINT)")
                               .arg(quotedName(versions)));
    Error error = begin(Access::Write);
    for (const QString &statement : std::as_const(statements))
        error = error ? error : run(statement);
    error =
        error ? error
              : run(QStringLiteral("INSERT INTO %1 (name, version) VALUES (?, ?)").arg(quotedName(versions)),
                    {sql.tableName(), version});
    error = error ? error : commit();
    if (error)
        rollBack();
    return error;
}

RecordStore::Error RecordStore::checkVersion(const RecordSql &sql)
{
    int found = 0;
    Error error = select(QStringLiteral("SELECT version FROM %1 WHERE name = ?").arg(quotedName(versions)),
                         {sql.tableName()}, [&found](const QSqlQuery &row) { found = row.value(0).toInt(); });
    if (!error && found != version)
        return CloudError{
            CloudError::Code::Other,
            words("The cloud's records were written by another version of the program (%1).").arg(found)};
    return error;
}

RecordStore::Error RecordStore::checkRights()
{
    for (const QStringList &statements : std::as_const(m_rightsChecks)) {
        for (const QString &statement : statements) {
            if (Error error = run(statement))
                return error;
        }
    }
    return run(QStringLiteral("SELECT 1"));
}

// SQLite does not wait for a lock to write when it already has one to read.
RecordStore::Error RecordStore::begin(Access access)
{
    const bool locks = access == Access::Write && !m_place.account.isRemote();
    return run(locks ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("BEGIN"));
}

RecordStore::Error RecordStore::commit()
{
    return run(QStringLiteral("COMMIT"));
}

// Statements that were prepared before somebody changed a table have to be prepared again.
void RecordStore::rollBack()
{
    (void)run(QStringLiteral("ROLLBACK"));
    if (std::exchange(m_hasStalePlans, false))
        m_prepared.clear();
}

RecordStore::Error RecordStore::run(const QString &statement, const QVariantList &values)
{
    return select(statement, values, [](const QSqlQuery &) {});
}

// Statements with values come again and again; the others are not worth keeping.
RecordStore::Execution RecordStore::execute(const QString &statement, const QVariantList &values)
{
    m_shouldTryAgain = false;
    auto known = m_prepared.find(statement);
    if (known == m_prepared.end()) {
        QSqlQuery query(QSqlDatabase::database(m_connection, false));
        query.setForwardOnly(true);
        if (values.isEmpty())
            m_prepared.erase(QString());
        else if (!query.prepare(statement))
            return {nullptr, errorOf(query.lastError())};
        known = m_prepared.emplace(values.isEmpty() ? QString() : statement, std::move(query)).first;
    }
    QSqlQuery &query = known->second;
    for (qsizetype i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values.at(i));
    if (values.isEmpty() ? query.exec(statement) : query.exec())
        return {&query, std::nullopt};
    Error error = errorOf(query.lastError());
    query.finish();
    return {&query, error};
}

RecordStore::Error RecordStore::errorOf(const QSqlError &error)
{
    const bool isRemote = m_place.account.isRemote();
    const QString state = error.nativeErrorCode();
    if (isRemote && !isOpen())
        return CloudError{CloudError::Code::Unreachable,
                          words("The connection to the server %1 is lost.").arg(m_place.account.host)};
    const bool isLocked = !isRemote && (state.toInt() & 0xff) == sqliteBusy;
    m_hasStalePlans = m_hasStalePlans || state == QLatin1String("0A000");
    // Serialization failure and deadlock.
    m_shouldTryAgain = m_hasStalePlans || state == QLatin1String("40001") || state == QLatin1String("40P01");
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return CloudError{isLocked   ? CloudError::Code::Unreachable
                      : isRemote ? codeOfState(state)
                                 : CloudError::Code::Other,
                      isRemote ? text.simplified() : m_place.file + QLatin1String(": ") + text.simplified()};
}

qint64 RecordStore::nextCreated()
{
    m_lastCreated = std::max(m_lastCreated + 1, QDateTime::currentMSecsSinceEpoch() * 1000);
    return m_lastCreated;
}

} // namespace oblino
