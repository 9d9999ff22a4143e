#pragma once

#include <contacts/entity.h>
#include <contacts/entitymodel.h>

#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <vector>

class QSqlDatabase;

namespace oblino {

/// The objects of an opened store and what is pending of them. Belongs to the thread that opened the store.
class ManagedObjectContext
{
public:
    /// @param connection  the name of the open database connection, which outlives the context
    ManagedObjectContext(QString connection, const QList<Entity> &entities);

    /// Reads all objects. @return an error, empty when it was done
    [[nodiscard]] QString load();

    /// The objects of an entity, or null when the store has no entity of that name. The context's own.
    [[nodiscard]] EntityModel *objects(const QString &entityName) const;

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Writes all that is pending, of every entity or of none; after a failure it is still pending.
    /// @param patience  how long to wait for another program that has locked the store
    /// @return an error, empty when it was done
    [[nodiscard]] QString save(std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// Removes every object of the entity from the store at once, and what is pending of it here.
    /// @return an error, empty when it was done
    [[nodiscard]] QString batchDelete(const QString &entityName);

private:
    [[nodiscard]] QSqlDatabase database() const;

    QString m_connection;
    std::vector<std::unique_ptr<EntityModel>> m_models;
};

} // namespace oblino
