#include <contacts/persistentcontainer.h>

#include <base/trace.h>
#include <contacts/sqlquery.h>
#include <files/openfile.h>

#include <QStandardPaths>
#include <QUuid>

namespace oblino {

namespace {

constexpr int version = 1;

// Reads only, so that nothing happens to a file that turns out to be of no use.
QString validationError(const QSqlDatabase &database)
{
    QSqlQuery check = execute(database, QStringLiteral("PRAGMA quick_check(1)"));
    const QString finding = check.next() ? check.value(0).toString() : QString();
    if (QString error = errorMessage(check); !error.isEmpty())
        return error;
    if (finding != QLatin1String("ok"))
        return QStringLiteral("the file is damaged (%1)").arg(finding.simplified());
    QSqlQuery query = execute(database, QStringLiteral("PRAGMA user_version"));
    const int found = query.next() ? query.value(0).toInt() : 0;
    if (found > version)
        return QStringLiteral("written by a newer version of the program (%1)").arg(found);
    if (found == 0 && !database.tables().isEmpty())
        return QStringLiteral("a database of something else");
    return {};
}

// Setting the version comes first and always, as SQLite opens a file that it may only read without a word;
// where nothing else is to be done it is taken back before it reaches the file. AUTOINCREMENT: the key of a
// deleted contact must not come back while a window still knows it. What is deleted shall not stay legible.
QString prepare(const QSqlDatabase &database)
{
    const QString table =
        QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, name, phoneNo)");
    const bool isNew = database.tables().isEmpty();
    for (const QString &statement :
         {QStringLiteral("PRAGMA synchronous = FULL"), QStringLiteral("PRAGMA secure_delete = ON"),
          QStringLiteral("BEGIN IMMEDIATE"), QStringLiteral("PRAGMA user_version = %1").arg(version),
          table.arg(Clients::fetchRequest().entityName), table.arg(TeamMembers::fetchRequest().entityName),
          isNew ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK")}) {
        if (QString error = errorMessage(execute(database, statement)); !error.isEmpty())
            return error;
    }
    return {};
}

} // namespace

QString contactsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

PersistentContainer::PersistentContainer(const QString &folder)
    : m_path(folder + QLatin1String("/Model.sqlite"))
    , m_connection(QUuid::createUuid().toString())
{
}

PersistentContainer::~PersistentContainer()
{
    m_context.reset();
    QSqlDatabase::removeDatabase(m_connection);
}

StoreLoading PersistentContainer::loadPersistentStores()
{
    QString error = open();
    if (error.isEmpty()) {
        m_context = std::make_unique<ManagedObjectContext>(m_connection);
        error = m_context->load();
    }
    StoreLoading loading = {
        .error = {}, .reason = error, .location = m_path, .type = QStringLiteral("SQLite")};
    if (!error.isEmpty()) {
        m_context.reset();
        QSqlDatabase::database(m_connection, false).close(); // and with it a transaction
        loading.error = m_path + QLatin1String(": ") + error;
    }
    return loading;
}

QString PersistentContainer::open()
{
    if (QString error = makePrivateFile(m_path); !error.isEmpty())
        return error;
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    database.setDatabaseName(m_path);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
    if (!database.open())
        return database.lastError().text();
    QString error = validationError(database);
    return error.isEmpty() ? prepare(database) : error;
}

StoreLoading loadTraced(PersistentContainer &container)
{
    StoreLoading loading = container.loadPersistentStores();
    if (loading.error.isEmpty())
        trace("---Persistent Store---:", loading.location, loading.type);
    else
        trace("Unable to Add Persistent Store", loading.error);
    return loading;
}

} // namespace oblino
