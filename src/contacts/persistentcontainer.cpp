#include <contacts/persistentcontainer.h>

#include <contacts/sqlcalls.h>
#include <files/openfile.h>

#include <QSqlError>
#include <QUuid>

namespace oblino {

namespace {

constexpr int version = 1;

} // namespace

PersistentContainer::PersistentContainer(QString name, QList<Entity> entities, QString folder)
    : m_name(std::move(name))
    , m_entities(std::move(entities))
    , m_folder(std::move(folder))
{
}

PersistentContainer::~PersistentContainer()
{
    close();
}

StoreLoading PersistentContainer::loadPersistentStores()
{
    close();
    QString error = open();
    if (error.isEmpty()) {
        m_context = std::make_unique<ManagedObjectContext>(m_connection, m_entities);
        error = m_context->load();
    }
    StoreLoading loading = {
        .error = {}, .reason = error, .location = path(), .type = QStringLiteral("SQLite")};
    if (!error.isEmpty()) {
        close();
        loading.error = path() + QLatin1String(": ") + error;
    }
    return loading;
}

QString PersistentContainer::path() const
{
    return m_folder + QLatin1Char('/') + m_name + QLatin1String(".sqlite");
}

QString PersistentContainer::open()
{
    if (QString error = makePrivateFile(path()); !error.isEmpty())
        return error;
    m_connection = m_name + QUuid::createUuid().toString();
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    database.setDatabaseName(path());
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
    return database.open() ? prepare() : database.lastError().text();
}

QString PersistentContainer::prepare()
{
    if (QString error = check(); !error.isEmpty())
        return error;
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    QString error = SqlCall(database, QStringLiteral("PRAGMA synchronous = FULL")).error();
    // What is deleted shall not stay legible in the file.
    if (error.isEmpty())
        error = SqlCall(database, QStringLiteral("PRAGMA secure_delete = ON")).error();
    return error.isEmpty() ? makeTables() : error;
}

// Reads only, so that nothing happens to a file that turns out to be of no use.
QString PersistentContainer::check()
{
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    SqlCall soundness(database, QStringLiteral("PRAGMA quick_check(1)"));
    const QString finding = soundness.onlyValue().toString();
    if (QString error = soundness.error(); !error.isEmpty())
        return error;
    if (finding != QLatin1String("ok"))
        return QStringLiteral("the file is damaged (%1)").arg(finding.simplified());
    const int found = SqlCall(database, QStringLiteral("PRAGMA user_version")).onlyValue().toInt();
    if (found > version)
        return QStringLiteral("written by a newer version of the program (%1)").arg(found);
    if (found == 0 && !database.tables().isEmpty())
        return QStringLiteral("a database of something else");
    return {};
}

// Setting the version comes first and always, as SQLite opens a file that it may only read without a word;
// where nothing else is to be done it is taken back before it reaches the file.
QString PersistentContainer::makeTables()
{
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    const QStringList present = database.tables();
    QStringList statements = {QStringLiteral("BEGIN IMMEDIATE"),
                              QStringLiteral("PRAGMA user_version = %1").arg(version)};
    QString last = QStringLiteral("ROLLBACK");
    for (const Entity &entity : m_entities) {
        if (present.contains(entity.name))
            continue;
        // AUTOINCREMENT: the key of a deleted object must not come back while a window still knows it.
        statements += QStringLiteral("CREATE TABLE %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, %2)")
                          .arg(sqlName(entity.name), sqlNames(entity.attributes));
        last = QStringLiteral("COMMIT");
    }
    for (const QString &statement : statements << last) {
        if (QString error = SqlCall(database, statement).error(); !error.isEmpty()) {
            (void)SqlCall(database, QStringLiteral("ROLLBACK"));
            return error;
        }
    }
    return {};
}

void PersistentContainer::close()
{
    m_context.reset();
    if (m_connection.isEmpty())
        return;
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
}

} // namespace oblino
