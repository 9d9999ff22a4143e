#pragma once

#include <core/task.h>

#include <QList>
#include <QString>

#include <functional>

namespace oblino {

/// What the task store needs of the cloud copy of its tasks. An operation on one task answers at once, with
/// its success so far; one on the whole copy waits, with the event loop running, and answers whether
/// everything was done.
class CloudOperations
{
public:
    /// Told the name of a zone that was saved, or why it was not, on a thread of the service.
    using ZoneHandler = std::function<void(const QString &zone, const QString &error)>;

    CloudOperations() = default;
    CloudOperations(const CloudOperations &) = delete;
    CloudOperations &operator=(const CloudOperations &) = delete;
    virtual ~CloudOperations() = default;

    /// Makes a new record of a task.
    virtual bool addTask(const task &t) = 0;
    /// Rewrites every record with the key of the task, or makes a new one where there is none.
    virtual bool editTask(const task &t) = 0;
    /// Deletes every record with the key.
    virtual bool deleteTask(const QString &key) = 0;
    /// Makes a record again of a task whose records deleteTask() has deleted, or once it has; none where
    /// there was none.
    virtual void restoreTask(const task &t) = 0;

    /// Deletes every record of a task.
    virtual bool deleteAll() = 0;
    /// Rewrites or makes the records of all these tasks.
    virtual bool send(const QList<task> &tasks) = 0;
    /// Merges every record into the selected list: a task whose key has a record is overwritten, a record of
    /// an unknown key becomes a new task, nothing is deleted.
    virtual bool merge() = 0;
    /// Whether an operation on the whole copy waits for answers.
    [[nodiscard]] virtual bool isWaiting() const = 0;

    /// Saves a record zone "SharingZone".
    virtual void createSharingZone(ZoneHandler handler) = 0;
    /// Traces who of the cloud's users has that phone number.
    virtual void discoverUser(const QString &phone) = 0;
};

} // namespace oblino
