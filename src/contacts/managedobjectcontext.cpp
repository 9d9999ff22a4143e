#include <contacts/managedobjectcontext.h>

#include <contacts/sqlcalls.h>

#include <algorithm>

namespace oblino {

ManagedObjectContext::ManagedObjectContext(QString connection, const QList<Entity> &entities)
    : m_connection(std::move(connection))
{
    for (const Entity &entity : entities)
        m_models.push_back(std::make_unique<EntityModel>(entity));
}

QString ManagedObjectContext::load()
{
    for (const auto &model : m_models) {
        if (QString error = model->load(database()); !error.isEmpty())
            return error;
    }
    return {};
}

EntityModel *ManagedObjectContext::objects(const QString &entityName) const
{
    for (const auto &model : m_models) {
        if (model->entity().name == entityName)
            return model.get();
    }
    return nullptr;
}

bool ManagedObjectContext::hasChanges() const
{
    return std::any_of(m_models.begin(), m_models.end(),
                       [](const auto &model) { return model->hasChanges(); });
}

QString ManagedObjectContext::save(std::chrono::milliseconds patience)
{
    (void)SqlCall(database(), QStringLiteral("PRAGMA busy_timeout = %1").arg(patience.count()));
    QString error = SqlCall(database(), QStringLiteral("BEGIN IMMEDIATE")).error();
    if (!error.isEmpty())
        return error;
    for (size_t i = 0; i < m_models.size() && error.isEmpty(); ++i)
        error = m_models[i]->write(database());
    if (error.isEmpty())
        error = SqlCall(database(), QStringLiteral("COMMIT")).error();
    if (!error.isEmpty()) {
        (void)SqlCall(database(), QStringLiteral("ROLLBACK")); // may have happened by itself
        return error;
    }
    for (const auto &model : m_models)
        model->confirmWritten();
    return {};
}

QString ManagedObjectContext::batchDelete(const QString &entityName)
{
    EntityModel *model = objects(entityName);
    if (!model)
        return QStringLiteral("no such entity: %1").arg(entityName);
    QString error = SqlCall(database(), QStringLiteral("DELETE FROM %1").arg(sqlName(entityName))).error();
    if (error.isEmpty())
        model->clear();
    return error;
}

QSqlDatabase ManagedObjectContext::database() const
{
    return QSqlDatabase::database(m_connection, false);
}

} // namespace oblino
