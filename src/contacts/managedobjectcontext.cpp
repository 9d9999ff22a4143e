#include <contacts/managedobjectcontext.h>

#include <contacts/sqlquery.h>

namespace oblino {

ManagedObjectContext::ManagedObjectContext(QString connection)
    : m_connection(std::move(connection))
{
}

QString ManagedObjectContext::load()
{
    QString error;
    for (ContactModel &model : m_models)
        error = error.isEmpty() ? model.load(database()) : error;
    return error;
}

ContactModel *ManagedObjectContext::objects(const FetchRequest &request)
{
    for (ContactModel &model : m_models) {
        if (model.entityName() == request.entityName)
            return &model;
    }
    return nullptr;
}

bool ManagedObjectContext::hasChanges() const
{
    return m_models[0].hasChanges() || m_models[1].hasChanges();
}

QString ManagedObjectContext::save(std::chrono::milliseconds timeout)
{
    const auto run = [this](const QString &statement) {
        return errorMessage(execute(database(), statement));
    };
    (void)run(QStringLiteral("PRAGMA busy_timeout = %1").arg(timeout.count()));
    QString error = run(QStringLiteral("BEGIN IMMEDIATE"));
    if (!error.isEmpty())
        return error;
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

QString ManagedObjectContext::batchDelete(const FetchRequest &request)
{
    QString error =
        errorMessage(execute(database(), QStringLiteral("DELETE FROM %1").arg(request.entityName)));
    if (error.isEmpty())
        objects(request)->clear();
    return error;
}

QSqlDatabase ManagedObjectContext::database() const
{
    return QSqlDatabase::database(m_connection, false);
}

QStringList fetchNames(ManagedObjectContext *context, const FetchRequest &request)
{
    const ContactModel *contacts = context ? context->objects(request) : nullptr;
    QStringList names;
    for (int row = 0; contacts && row < contacts->rowCount(); ++row)
        names += contacts->text(row, NameColumn);
    return names;
}

} // namespace oblino
