#pragma once

#include <contacts/contactmodel.h>

#include <QString>
#include <QStringList>

#include <array>
#include <chrono>

class QSqlDatabase;

namespace oblino {

/// The contacts of an opened store and what is pending of them. Belongs to the thread that opened the store.
/// The functions that return a text return an error, empty when all was done.
class ManagedObjectContext
{
public:
    /// @param connection  the name of the open database connection, which outlives the context
    explicit ManagedObjectContext(QString connection);

    /// Reads all contacts.
    [[nodiscard]] QString load();

    /// The contacts that are asked for, edits that are pending included. The context's own; null when there
    /// is no such entity.
    [[nodiscard]] ContactModel *objects(const FetchRequest &request);

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Writes all that is pending, of both entities or of none; after a failure it is still pending.
    /// @param timeout  how long to wait for another program that has locked the store
    [[nodiscard]] QString save(std::chrono::milliseconds timeout = std::chrono::seconds(1));

    /// Removes every contact of the entity from the store at once, and what is pending of it here.
    [[nodiscard]] QString batchDelete(const FetchRequest &request);

private:
    [[nodiscard]] QSqlDatabase database() const;

    QString m_connection;
    std::array<ContactModel, 2> m_models = {ContactModel(Clients::fetchRequest()),
                                            ContactModel(TeamMembers::fetchRequest())};
};

/// The names of the contacts that are asked for; none where there is no context.
[[nodiscard]] QStringList fetchNames(ManagedObjectContext *context, const FetchRequest &request);

} // namespace oblino
