#pragma once

#include <core/cloudoperations.h>

#include <QHash>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace oblino {

class CloudContainer;
class CloudOperation;
class CloudRecord;
class CloudWork;
class NotificationCenter;
class TaskManager;
enum class AccountStatus;
struct RecordQuery;

/// The cloud copy of a task store, one record a task in the private database of a container. Used on the main
/// thread; the store's signals tell of what comes of it.
class TaskCloud : public QObject, public CloudOperations
{
    Q_OBJECT

public:
    /// @param container      goes before this object does
    /// @param notifications  told "update" when the store's last message has changed, and "reload" when its
    ///                       list has
    /// @param timeout        how long an operation that waits goes without any answer before it gives up
    TaskCloud(TaskManager &store, CloudContainer &container, NotificationCenter &notifications,
              std::chrono::milliseconds timeout = std::chrono::seconds(30));

    bool addTask(const task &t) override;
    bool editTask(const task &t) override;
    bool deleteTask(const QString &key) override;
    void restoreTask(const task &t) override;
    bool deleteAll() override;
    bool send(const QList<task> &tasks) override;
    bool merge() override;
    [[nodiscard]] bool isWaiting() const override { return m_waits > 0; }
    void createSharingZone(ZoneHandler handler) override;
    void discoverUser(const QString &phone) override;

private:
    using Work = std::shared_ptr<CloudWork>;

    [[nodiscard]] std::shared_ptr<CloudOperation> beginOperation(const Work &work,
                                                                 const char *noAccountMessage = nullptr);
    void handleAccountStatus(AccountStatus status, const QString &reason, CloudOperation &operation,
                             const char *noAccountMessage);
    [[nodiscard]] bool perform(const std::function<bool(const Work &work)> &operation,
                               const std::function<void(bool succeeded)> &then = {});
    void finishDeletion(const QString &key, bool succeeded);
    void tellOutcome(bool succeeded, const QString &cause);
    [[nodiscard]] bool add(const task &t, const Work &work);
    [[nodiscard]] bool edit(const task &t, const Work &work);
    void save(const CloudRecord &record, const std::shared_ptr<CloudOperation> &operation);
    [[nodiscard]] bool remove(const RecordQuery &query, const Work &work);
    [[nodiscard]] bool hasSucceeded(CloudWork &work);
    void mergeRecords(const QList<CloudRecord> &records, CloudOperation &operation);
    void mergeIntoSelected(const task &t);

    struct Deletion
    {
        int underWay = 0;
        bool hasSucceeded = false;
        std::optional<task> restored; // to be made again once it has
    };

    TaskManager &m_store;
    CloudContainer &m_container;
    NotificationCenter &m_notifications;
    std::chrono::milliseconds m_timeout;
    int m_waits = 0;
    QHash<QString, Deletion> m_deletions; // by the keys of single tasks
};

} // namespace oblino
