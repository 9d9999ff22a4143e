#pragma once

#include <contacts/managedobjectcontext.h>

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

/// Where the contacts of this user lie.
[[nodiscard]] QString contactsFolder();

/// The store "Model" of the contacts, in one SQLite file. Each container has a connection of its own, used
/// only on the thread that opened it. A file that cannot be used (damaged, locked by another process,
/// read-only, written by a newer version, or not such a store) is an error and stays as it is.
class PersistentContainer
{
public:
    /// @param folder  where the file "Model.sqlite" lies; made (0700) when it is missing
    explicit PersistentContainer(const QString &folder);
    PersistentContainer(const PersistentContainer &) = delete;
    PersistentContainer &operator=(const PersistentContainer &) = delete;
    ~PersistentContainer();

    /// Opens the store, or makes it (0600). Once.
    [[nodiscard]] StoreLoading loadPersistentStores();

    /// The main context, or null when no store is loaded. The container's own.
    [[nodiscard]] ManagedObjectContext *viewContext() const { return m_context.get(); }

private:
    [[nodiscard]] QString open();

    QString m_path;
    QString m_connection; // its name
    std::unique_ptr<ManagedObjectContext> m_context;
};

/// Loads the container of a window, and traces what came of it in one line.
[[nodiscard]] StoreLoading loadTraced(PersistentContainer &container);

} // namespace oblino
