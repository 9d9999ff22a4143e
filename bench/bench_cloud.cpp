// How long it takes to send 10,000 tasks to the cloud and to merge them back, against writing and reading the
// same rows by one prepared statement in one transaction.
#include "generatedlist.h"

#include <support/postgresserver.h>

#include <base/appearance.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <cloud/taskcloud.h>
#include <cloud/taskrecord.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <records/recordsql.h>
#include <records/sqlcloudcontainer.h>

#include <QCoreApplication>
#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace oblino;
using namespace oblino::bench;

namespace {

constexpr qsizetype taskCount = 10'000;
constexpr double goal = 3; // times the plain statement
constexpr int rounds = 5;

double milliseconds(const std::function<void()> &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void require(bool done, const char *what, const QString &why = {})
{
    if (!done)
        qFatal("%s: %s", what, qPrintable(why));
}

// The rows by themselves: one table, one statement, one transaction.
class PlainTable
{
public:
    explicit PlainTable(const QSqlDatabase &database)
        : m_database(database)
    {
    }

    void write(const QList<CloudRecord> &records)
    {
        const RecordSql sql(DatabaseScope::Shared, taskRecordType());
        run(QStringLiteral("DROP TABLE IF EXISTS ") + quotedName(sql.tableName()));
        for (const QString &statement : sql.creation())
            run(statement);
        require(m_database.transaction(), "begin");
        QSqlQuery query(m_database);
        require(query.prepare(sql.upsert(1).section(QLatin1String(" ON CONFLICT"), 0, 0)), "prepare");
        for (qint64 i = 0; const CloudRecord &record : records) {
            QVariantList values;
            sql.appendRow(values, record, i++);
            for (int column = 0; const QVariant &value : values)
                query.bindValue(column++, value);
            require(query.exec(), "insert", query.lastError().text());
        }
        require(m_database.commit(), "commit");
    }

    void read()
    {
        const RecordSql sql(DatabaseScope::Shared, taskRecordType());
        require(m_database.transaction(), "begin");
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        require(query.prepare(sql.select({}, 0)) && query.exec(), "select", query.lastError().text());
        qsizetype rows = 0;
        for (; query.next(); ++rows) {
            for (int column = 0; column <= taskRecordType().fields().size(); ++column)
                (void)query.value(column);
        }
        require(rows == taskCount, "rows");
        require(m_database.commit(), "commit");
    }

private:
    void run(const QString &statement)
    {
        QSqlQuery query(m_database);
        require(query.exec(statement), qPrintable(statement), query.lastError().text());
    }

    QSqlDatabase m_database;
};

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

void report(const char *engine, const char *what, double took, double plain)
{
    std::printf("%-12s %-28s %9.1f %9.1f %7.2f%s\n", engine, what, took, plain, took / plain,
                took <= goal * plain ? "" : "  missed");
}

void measure(const char *engine, const StoreLocation &place, const QSqlDatabase &database)
{
    require(database.isOpen() || QSqlDatabase(database).open(), "open", database.lastError().text());
    const QTemporaryDir folder;
    Defaults settings(folder.filePath(QStringLiteral("settings.ini")));
    Appearance appearance;
    NotificationCenter notifications;
    TaskManager store(settings, appearance);
    std::unique_ptr<TaskCloud> copy; // goes after the container, whose answers it takes
    SqlCloudContainer container(place, {&taskRecordType()});
    copy = std::make_unique<TaskCloud>(store, container, notifications);
    store.setCloud(copy.get());
    const QList<task> tasks = generatedTasks(taskCount, QDate::currentDate());
    QList<CloudRecord> records;
    for (const task &t : tasks)
        records += newTaskRecord(t, false);

    PlainTable plain(database);
    std::vector<double> writing;
    std::vector<double> reading;
    std::vector<double> adding;
    std::vector<double> rewriting;
    std::vector<double> filling;
    std::vector<double> merging;
    for (int round = 0; round < rounds; ++round) {
        writing.push_back(milliseconds([&] { plain.write(records); }));
        reading.push_back(milliseconds([&] { plain.read(); }));
        store.setTasks(tasks);
        if (round > 0)
            require(store.deleteAllTasksToCloud(), "delete");
        adding.push_back(milliseconds([&] { require(store.syncToCloudFromLocal(), "send"); }));
        rewriting.push_back(milliseconds([&] { require(store.syncToCloudFromLocal(), "send again"); }));
        store.setTasks({});
        filling.push_back(milliseconds([&] { require(store.syncToLocalFromCloud(), "fill"); }));
        merging.push_back(milliseconds([&] { require(store.syncToLocalFromCloud(), "merge"); }));
        require(store.tasks().size() == taskCount, "tasks");
    }
    report(engine, "send, all new", median(adding), median(writing));
    report(engine, "send, all there", median(rewriting), median(writing));
    report(engine, "merge into an empty list", median(filling), median(reading));
    report(engine, "merge into the same list", median(merging), median(reading));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Trace::setDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    std::printf("%-12s %-28s %9s %9s %7s   (goal %.0f)\n", "", "", "took, ms", "plain, ms", "times", goal);

    const QTemporaryDir folder;
    const QString plain = QStringLiteral("plain");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), plain);
        database.setDatabaseName(folder.filePath(QStringLiteral("plain.sqlite")));
        measure("SQLite", {folder.filePath(QStringLiteral("private/Cloud.sqlite"))}, database);
    }
    QSqlDatabase::removeDatabase(plain);
    if (!PostgresServer::isInstalled()) {
        std::printf("PostgreSQL is not installed.\n");
        return EXIT_SUCCESS;
    }
    PostgresServer server;
    const StoreLocation place = server.newPlace();
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), plain);
        database.setHostName(place.account.host);
        database.setPort(place.account.port);
        database.setDatabaseName(place.account.database);
        database.setUserName(place.account.user);
        database.setPassword(place.password);
        database.setConnectOptions(place.account.tlsMode == TlsMode::Disable
                                       ? QStringLiteral("sslmode=disable")
                                       : QStringLiteral("sslmode=require"));
        measure("PostgreSQL", place, database);
    }
    QSqlDatabase::removeDatabase(plain);
    Trace::setDescriptor(-1);
    return EXIT_SUCCESS;
}
