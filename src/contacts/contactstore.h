#pragma once

#include <contacts/contactmodel.h>

#include <QString>
#include <QStringList>

#include <array>
#include <chrono>

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

/// The store "Model" of the contacts in one SQLite file, and its main context: edits of its models are
/// pending until they are saved. Each has a connection of its own, used only on the thread that opened it. A
/// file that cannot be used (damaged, locked by another process, read-only, written by a newer version, or
/// not such a store) is an error and stays as it is.
class ContactStore
{
public:
    /// @param folder  where the file "Model.sqlite" lies; made (0700) when it is missing
    explicit ContactStore(const QString &folder);
    ContactStore(const ContactStore &) = delete;
    ContactStore &operator=(const ContactStore &) = delete;
    ~ContactStore();

    /// Opens the store, or makes it (0600), and loads it. Once.
    [[nodiscard]] StoreLoading loadPersistentStores();
    /// The same, and traces what came of it in one line.
    [[nodiscard]] StoreLoading loadTraced();

    /// The main context, or null when the store is not open.
    [[nodiscard]] ContactStore *viewContext() { return m_isOpen ? this : nullptr; }

    /// The contacts that are asked for. The store's own; null when there is no such entity.
    [[nodiscard]] ContactModel *objects(const FetchRequest &request);
    /// Their names, empty where the store is not open.
    [[nodiscard]] QStringList names(const FetchRequest &request);

    /// Replaces everything, what is pending too, by what is on disk, or by nothing where that cannot be read.
    /// @return an error, empty when it was done
    [[nodiscard]] QString load();

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Writes all that is pending, of both entities or of none; after a failure it is still pending.
    /// @param timeout  how long to wait for another program that has locked the file
    /// @return an error, empty when it was done
    [[nodiscard]] QString save(std::chrono::milliseconds timeout = std::chrono::seconds(1));

    /// Removes every contact of the entity at once, on disk and here.
    /// @return an error, empty when it was done
    [[nodiscard]] QString batchDelete(const FetchRequest &request);

private:
    [[nodiscard]] QString open();
    [[nodiscard]] QString run(const QString &statement) const;
    [[nodiscard]] QSqlDatabase database() const;

    QString m_path;
    QString m_connection; // its name
    std::array<ContactModel, 2> m_models = {ContactModel(Clients::fetchRequest()),
                                            ContactModel(TeamMembers::fetchRequest())};
    bool m_isOpen = false;
};

} // namespace oblino
