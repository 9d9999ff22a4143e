#pragma once

#include <contacts/entity.h>
#include <contacts/managedobjectcontext.h>

#include <QList>
#include <QString>

#include <memory>

namespace oblino {

/// What came of opening a store.
struct StoreLoading
{
    QString error;    ///< which file could not be opened, and why; empty when it was
    QString reason;   ///< why alone
    QString location; ///< the file's path
    QString type;     ///< the kind of store
};

/// A small local object store in one SQLite file. Each container has a connection of its own, used only on
/// the thread that opened it. A file that cannot be used (damaged, locked by another process, read-only,
/// written by a newer version, or not such a store) is an error and stays as it is.
class PersistentContainer
{
public:
    /// @param folder  where the file "<name>.sqlite" lies; made (0700) when it is missing
    PersistentContainer(QString name, QList<Entity> entities, QString folder);
    PersistentContainer(const PersistentContainer &) = delete;
    PersistentContainer &operator=(const PersistentContainer &) = delete;
    ~PersistentContainer();

    /// Opens the store, or makes it (0600).
    [[nodiscard]] StoreLoading loadPersistentStores();

    /// The main context, or null when no store is loaded. The container's own.
    [[nodiscard]] ManagedObjectContext *viewContext() const { return m_context.get(); }

private:
    [[nodiscard]] QString path() const;
    [[nodiscard]] QString open();
    [[nodiscard]] QString prepare();
    [[nodiscard]] QString check();
    [[nodiscard]] QString makeTables();
    void close();

    QString m_name;
    QList<Entity> m_entities;
    QString m_folder;
    QString m_connection; // its name
    std::unique_ptr<ManagedObjectContext> m_context;
};

} // namespace oblino
