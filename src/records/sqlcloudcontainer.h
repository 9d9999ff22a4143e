#pragma once

#include <records/cloudaccount.h>
#include <records/cloudcontainer.h>

#include <QList>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>

namespace oblino {

/// The cloud record service on an SQL database: on a user's server, or in a file of this machine. It has one
/// thread, on which it works and answers. Requests that wait together go into one transaction.
///
/// When it goes it first finishes what waits, if that takes less than a second. It ends the rest within about
/// two: a transaction that is under way is undone, and what was not answered by then never is.
class SqlCloudContainer : public CloudContainer
{
public:
    static constexpr std::chrono::seconds defaultTimeout{20};

    /// @param types     what an account must be able to keep in its private database
    /// @param timeout  how long a server may take for what waits together; then the connection is cut. A
    ///                 sign-in may take half of that, another program lock the file for a quarter
    SqlCloudContainer(const StoreLocation &location, const QList<const RecordType *> &types,
                      std::chrono::milliseconds timeout = defaultTimeout);
    ~SqlCloudContainer() override;

    /// Keeps the records in another location from now on. Requests that wait, and those that the handlers of
    /// earlier ones make, are answered with an error; none of them reaches that location. They go on where
    /// only the password is another.
    void setLocation(const StoreLocation &location);

    /// Sets what is told when a server refuses to sign in, with the location and the password that were used;
    /// called on the thread of the service, before the requests are answered, and must not call back.
    void setOnLoginRefused(std::function<void(const StoreLocation &used)> onLoginRefused);

    [[nodiscard]] QString description() const override;
    [[nodiscard]] CloudDatabase &database(DatabaseScope scope) override;
    void accountStatus(StatusHandler handler) override;
    void discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler) override;

private:
    struct Service;
    class Database;

    QList<const RecordType *> m_types;
    std::shared_ptr<Service> m_service; // the thread's too
    std::map<DatabaseScope, std::unique_ptr<Database>> m_databases;
};

/// Whether records of these types can be kept in that location; opens it for a moment, and may take as long
/// as a server takes, or less once `cancelled` is true. @return what is wrong, in words
[[nodiscard]] std::optional<CloudError> testConnection(const StoreLocation &location,
                                                       const QList<const RecordType *> &types,
                                                       const std::atomic<bool> &cancelled);

} // namespace oblino
