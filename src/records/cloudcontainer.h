#pragma once

#include <records/cloudrecord.h>

#include <QString>

#include <functional>
#include <optional>

namespace oblino {

/// Whether the user can use the cloud.
enum class AccountStatus {
    CouldNotDetermine = 0,
    Available = 1,
    Restricted = 2, ///< signed in, without the rights that are needed
    NoAccount = 3,  ///< the sign-in was refused
    TemporarilyUnavailable = 4,
};

enum class DatabaseScope { Public = 1, Private = 2, Shared = 3 };

/// Why a request failed.
struct CloudError
{
    enum class Code { Unreachable, LoginRefused, RightsRefused, Other };

    Code code;
    QString localizedDescription; ///< a sentence for the user
};

/// One database of a container. Every request returns at once; its handler is called later, once, on a thread
/// of the service, and not at all once the service has ended. Requests are carried out in the order in which
/// they were made.
class CloudDatabase
{
public:
    using RecordHandler =
        std::function<void(const std::optional<CloudRecord> &record, const std::optional<CloudError> &error)>;
    using QueryHandler =
        std::function<void(const QList<CloudRecord> &records, const std::optional<CloudError> &error)>;
    using DeletionHandler = std::function<void(const std::optional<CloudError> &error)>;
    using ZoneHandler =
        std::function<void(const std::optional<RecordZone> &zone, const std::optional<CloudError> &error)>;

    CloudDatabase() = default;
    CloudDatabase(const CloudDatabase &) = delete;
    CloudDatabase &operator=(const CloudDatabase &) = delete;
    virtual ~CloudDatabase() = default;

    /// Writes a record, new or over the one of the same name.
    virtual void saveRecord(const CloudRecord &record, RecordHandler handler) = 0;
    /// Finds records of the default zone; they come in the order in which they were created.
    virtual void performQuery(const RecordQuery &query, QueryHandler handler) = 0;
    /// Deletes a record. One that is not there is no error.
    virtual void deleteRecord(const RecordID &record, DeletionHandler handler) = 0;
    virtual void saveRecordZone(const RecordZone &zone, ZoneHandler handler) = 0;
};

/// A cloud record service as one user sees it. What CloudDatabase says of handlers goes for its requests too.
class CloudContainer
{
public:
    /// @param reason  why the account cannot be used, a sentence for the user; empty where it can
    using StatusHandler = std::function<void(AccountStatus status, const std::optional<CloudError> &error,
                                             const QString &reason)>;
    using IdentityHandler = std::function<void(const std::optional<UserIdentity> &identity,
                                               const std::optional<CloudError> &error)>;

    CloudContainer() = default;
    CloudContainer(const CloudContainer &) = delete;
    CloudContainer &operator=(const CloudContainer &) = delete;
    virtual ~CloudContainer() = default;

    /// Where it keeps its records, for traces.
    [[nodiscard]] virtual QString description() const = 0;
    [[nodiscard]] virtual CloudDatabase &database(DatabaseScope scope) = 0;
    [[nodiscard]] CloudDatabase &publicCloudDatabase() { return database(DatabaseScope::Public); }
    [[nodiscard]] CloudDatabase &privateCloudDatabase() { return database(DatabaseScope::Private); }

    virtual void accountStatus(StatusHandler handler) = 0;
    /// Looks for a user by phone number; neither an identity nor an error where nobody has it.
    virtual void discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler) = 0;
};

} // namespace oblino
