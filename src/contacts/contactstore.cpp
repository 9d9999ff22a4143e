#include <contacts/contactstore.h>

#include <base/trace.h>
#include <contacts/sqlquery.h>
#include <files/privatefiles.h>

#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

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
    const bool isNew = database.tables().isEmpty();
    const QString table =
        QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, name, phoneNo)");
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

ContactStore::ContactStore(const QString &folder)
    : m_path(folder + QLatin1String("/Model.sqlite"))
    , m_connection(QUuid::createUuid().toString())
{
}

ContactStore::~ContactStore()
{
    QSqlDatabase::removeDatabase(m_connection);
}

StoreLoading ContactStore::loadPersistentStores()
{
    QString error = open();
    if (error.isEmpty())
        error = load();
    m_isOpen = error.isEmpty();
    StoreLoading loading = {
        .error = {}, .reason = error, .location = m_path, .type = QStringLiteral("SQLite")};
    if (!m_isOpen) {
        loading.error = m_path + QLatin1String(": ") + error;
        database().close();
    }
    return loading;
}

StoreLoading ContactStore::loadTraced()
{
    StoreLoading loading = loadPersistentStores();
    if (m_isOpen)
        trace("---Persistent Store---:", loading.location, loading.type);
    else
        trace("Unable to Add Persistent Store", loading.error);
    return loading;
}

QString ContactStore::open()
{
    if (QString error = makePrivateFile(m_path); !error.isEmpty())
        return error;
    QSqlDatabase added = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    added.setDatabaseName(m_path);
    added.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
    if (!added.open())
        return added.lastError().text();
    QString error = validationError(added);
    return error.isEmpty() ? prepare(added) : error;
}

ContactModel *ContactStore::objects(const FetchRequest &request)
{
    for (ContactModel &model : m_models) {
        if (model.entityName() == request.entityName)
            return &model;
    }
    return nullptr;
}

QStringList ContactStore::names(const FetchRequest &request)
{
    const ContactModel *contacts = objects(request);
    QStringList names;
    for (int row = 0; contacts && row < contacts->rowCount(); ++row)
        names += contacts->text(row, NameColumn);
    return names;
}

QString ContactStore::load()
{
    QString error;
    for (ContactModel &model : m_models) {
        const QString failure = model.load(database());
        error = error.isEmpty() ? failure : error;
    }
    return error;
}

bool ContactStore::hasChanges() const
{
    return std::any_of(m_models.begin(), m_models.end(),
                       [](const ContactModel &model) { return model.hasChanges(); });
}

QString ContactStore::save(std::chrono::milliseconds timeout)
{
    (void)run(QStringLiteral("PRAGMA busy_timeout = %1").arg(timeout.count()));
    if (QString error = run(QStringLiteral("BEGIN IMMEDIATE")); !error.isEmpty())
        return error;
    QString error;
    for (ContactModel &model : m_models)
        error = error.isEmpty() ? model.write(database()) : error;
    if (error.isEmpty())
        error = run(QStringLiteral("COMMIT"));
    if (!error.isEmpty()) {
        (void)run(QStringLiteral("ROLLBACK")); // may have happened by itself
        return error;
    }
    for (ContactModel &model : m_models)
        model.confirmWritten();
    return {};
}

QString ContactStore::batchDelete(const FetchRequest &request)
{
    QString error = run(QStringLiteral("DELETE FROM %1").arg(request.entityName));
    if (error.isEmpty())
        (void)objects(request)->load(database()); // which leaves nothing of it, whatever becomes of it
    return error;
}

QString ContactStore::run(const QString &statement) const
{
    return errorMessage(execute(database(), statement));
}

QSqlDatabase ContactStore::database() const
{
    return QSqlDatabase::database(m_connection, false);
}

} // namespace oblino
