#include <records/recordstore.h>

#include <files/privatefiles.h>
#include <records/calldeadline.h>
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
constexpr int attempts = 5;
constexpr auto disconnectTimeout = 500ms;
constexpr int sqliteBusy = 5;
const QString versions = QStringLiteral("cloud_record_types");

QString tr(const char *text)
{
    return QCoreApplication::translate("CloudStore", text);
}

} // namespace

RecordStore::RecordStore(StoreLocation location, std::chrono::milliseconds timeout,
                         const std::atomic<bool> &cancelled)
    : m_location(std::move(location))
    , m_timeout(timeout)
    , m_cancelled(cancelled)
{
}

// A server need not answer the goodbye.
RecordStore::~RecordStore()
{
    const std::atomic<bool> never = false;
    const CallDeadline deadline(duplicateSocket(), disconnectTimeout, never);
    close();
}

void RecordStore::open()
{
    if (isOpen())
        return;
    close();
    m_connection = QStringLiteral("cloud") + QUuid::createUuid().toString();
    try {
        m_location.account.isRemote() ? openServer() : openFile();
    } catch (const CloudError &) {
        close();
        throw;
    }
}

void RecordStore::openFile()
{
    if (const QString why = makePrivateFile(m_location.file); !why.isEmpty())
        throw CloudError{CloudError::Code::Other, m_location.file + QLatin1String(": ") + why};
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    database.setDatabaseName(m_location.file);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(m_timeout.count() / 4));
    if (!database.open())
        throw errorOf(database.lastError());
    run(QStringLiteral("PRAGMA synchronous = FULL"));
    // What is deleted shall not stay legible in the file.
    run(QStringLiteral("PRAGMA secure_delete = ON"));
}

void RecordStore::openServer()
{
    const CloudAccount &account = m_location.account;
    probePostgres(account, m_location.password, m_timeout / 2, m_cancelled);
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_connection);
    database.setHostName(account.host);
    database.setPort(account.port);
    database.setDatabaseName(account.database);
    database.setUserName(account.user);
    database.setPassword(m_location.password);
    QStringList options;
    for (const auto &[name, value] : connectOptions(account, m_timeout / 2))
        options += QStringLiteral("%1='%2'").arg(QString::fromUtf8(name), QString::fromUtf8(value));
    database.setConnectOptions(options.join(QLatin1Char(';')));
    if (!database.open())
        throw errorOf(database.lastError());
}

void RecordStore::close()
{
    m_prepared.clear();
    m_tables.clear();
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
    if (!m_location.account.isRemote() || !isOpen())
        return -1;
    const QVariant handle = QSqlDatabase::database(m_connection, false).driver()->handle();
    const auto *connection = handle.value<PGconn *>();
    const PostgresLibrary *pq = PostgresLibrary::get();
    return connection && pq ? ::dup(pq->socket(connection)) : -1;
}

// Of two programs that make tables at once one fails, and finds them when it looks again.
const RecordSql &RecordStore::table(const RecordTable &table)
{
    if (const auto known = m_tables.find(table); known != m_tables.end())
        return known->second;
    RecordSql sql(table.first, *table.second);
    const auto look = [&] { return std::pair(hasTable(versions), hasTable(sql.tableName())); };
    for (auto seen = look();;) {
        const auto [hasVersions, isKnown] = seen;
        try {
            isKnown ? checkVersion(sql) : create(sql, !hasVersions);
            return m_tables.emplace(table, std::move(sql)).first->second;
        } catch (const CloudError &) {
            if (const auto now = look(); !isKnown && now != seen)
                seen = now;
            else
                throw;
        }
    }
}

// As statements see it: QSqlDatabase::tables() gives tables of a schema of the user's own another name.
bool RecordStore::hasTable(const QString &name)
{
    return !QSqlDatabase::database(m_connection, false).record(quotedName(name)).isEmpty();
}

void RecordStore::create(const RecordSql &sql, bool withVersions)
{
    inTransaction(Access::Write, [&] {
        if (withVersions)
            run(QStringLiteral("CREATE TABLE \"%1\" (name TEXT PRIMARY KEY, version BIGINT)").arg(versions));
        for (const QString &statement : sql.creation())
            run(statement);
        run(QStringLiteral("INSERT INTO \"%1\" (name, version) VALUES (?, ?)").arg(versions),
            {sql.tableName(), version});
    });
}

void RecordStore::checkVersion(const RecordSql &sql)
{
    int found = 0;
    select(QStringLiteral("SELECT version FROM \"%1\" WHERE name = ?").arg(versions), {sql.tableName()},
           [&found](const QSqlQuery &row) { found = row.value(0).toInt(); });
    if (found != version)
        throw CloudError{
            CloudError::Code::Other,
            tr("The cloud's records were written by another version of the program (%1).").arg(found)};
}

void RecordStore::checkRights()
{
    for (const auto &[table, sql] : m_tables) {
        for (const QString &statement : sql.rightsCheck())
            run(statement);
    }
    run(QStringLiteral("SELECT 1"));
}

// SQLite does not wait for a lock to write when it already has one to read. Statements that were prepared
// before somebody changed a table have to be prepared again.
void RecordStore::inTransaction(Access access, const std::function<void()> &work)
{
    const bool locks = access == Access::Write && !m_location.account.isRemote();
    for (int attempt = 1;; ++attempt) {
        try {
            run(locks ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("BEGIN"));
            work();
            return run(QStringLiteral("COMMIT"));
        } catch (const CloudError &) {
            const bool again = m_shouldTryAgain && attempt < attempts;
            if (isOpen())
                QSqlQuery(QSqlDatabase::database(m_connection, false)).exec(QStringLiteral("ROLLBACK"));
            if (std::exchange(m_hasStalePlans, false))
                m_prepared.clear();
            if (!again)
                throw;
        }
    }
}

void RecordStore::run(const QString &statement, const QVariantList &values)
{
    select(statement, values, [](const QSqlQuery &) {});
}

void RecordStore::select(const QString &statement, const QVariantList &values,
                         const std::function<void(const QSqlQuery &row)> &onRow)
{
    QSqlQuery &query = execute(statement, values);
    while (query.next())
        onRow(query);
    const QSqlError last = query.lastError();
    query.finish();
    if (last.isValid()) // it broke off midway
        throw errorOf(last);
}

// Statements with values come again and again; the others are not worth keeping.
QSqlQuery &RecordStore::execute(const QString &statement, const QVariantList &values)
{
    m_shouldTryAgain = false;
    if (m_cancelled)
        throw CloudError{CloudError::Code::Unreachable, tr("The program is ending.")};
    const QString key = values.isEmpty() ? QString() : statement;
    auto known = m_prepared.find(key);
    if (known == m_prepared.end()) {
        QSqlQuery query(QSqlDatabase::database(m_connection, false));
        query.setForwardOnly(true);
        if (!values.isEmpty() && !query.prepare(statement))
            throw errorOf(query.lastError());
        known = m_prepared.emplace(key, std::move(query)).first;
    }
    QSqlQuery &query = known->second;
    for (qsizetype i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values.at(i));
    if (!(values.isEmpty() ? query.exec(statement) : query.exec())) {
        const QSqlError error = query.lastError();
        query.finish();
        throw errorOf(error);
    }
    return query;
}

CloudError RecordStore::errorOf(const QSqlError &error)
{
    const bool isRemote = m_location.account.isRemote();
    const QString state = error.nativeErrorCode();
    if (isRemote && !isOpen())
        return {CloudError::Code::Unreachable,
                tr("The connection to the server %1 is lost.").arg(m_location.account.host)};
    const bool isLocked = !isRemote && (state.toInt() & 0xff) == sqliteBusy;
    m_hasStalePlans = m_hasStalePlans || state == QLatin1String("0A000");
    // Serialization failure and deadlock.
    m_shouldTryAgain = m_hasStalePlans || state == QLatin1String("40001") || state == QLatin1String("40P01");
    const QString text = (error.databaseText().isEmpty() ? error.text() : error.databaseText()).simplified();
    if (isRemote)
        return {codeOfState(state), text};
    return {isLocked ? CloudError::Code::Unreachable : CloudError::Code::Other,
            m_location.file + QLatin1String(": ") + text};
}

qint64 RecordStore::nextCreated()
{
    m_lastCreated = std::max(m_lastCreated + 1, QDateTime::currentMSecsSinceEpoch() * 1000);
    return m_lastCreated;
}

} // namespace oblino
