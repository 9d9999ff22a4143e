// The operations on single tasks.
#include <cloud/taskcloud.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <base/dispatch.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <core/taskmanager.h>
#include <records/cloudcontainer.h>

namespace oblino {

namespace {

struct StatusWords
{
    const char *traced;
    const char *message; // null where the account can be used
};

StatusWords wordsFor(AccountStatus status)
{
    switch (status) {
    case AccountStatus::Available:
        return {"-CloudKit:User is Logged In-", nullptr};
    case AccountStatus::Restricted:
        return {"-CloudKit:Restricted-", "-iCloud:Cannot Login (Restricted)-"};
    case AccountStatus::NoAccount:
        return {"-CloudKit:User is NOT Logged In-", "-iCloud:User is NOT Logged In-"};
    case AccountStatus::CouldNotDetermine:
    case AccountStatus::TemporarilyUnavailable:
        break;
    }
    return {"-CloudKit:Cannot Determine Status-", "-iCloud:Cannot Login (Unknown)-"};
}

// Whether a last message says that the account cannot be used.
bool isFailure(const QString &message)
{
    return message.contains(QLatin1String("iCloud:Cannot Login")) ||
           message.contains(QLatin1String("iCloud:User is NOT Logged In"));
}

RecordQuery byKey(const QString &key)
{
    return {&taskRecordType(), RecordPredicate::equals(QStringLiteral("key"), key)};
}

} // namespace

TaskCloud::TaskCloud(TaskManager &store, CloudContainer &container, NotificationCenter &notifications,
                     std::chrono::milliseconds timeout)
    : m_store(store)
    , m_container(container)
    , m_notifications(notifications)
    , m_timeout(timeout)
{
}

std::shared_ptr<CloudOperation> TaskCloud::beginOperation(const Work &work, const char *noAccountMessage)
{
    trace("Container:", [this] { return m_container.description(); });
    auto operation = std::make_shared<CloudOperation>(work);
    m_container.accountStatus([this, operation, noAccountMessage, ticket = work->begin()](
                                  AccountStatus status, const auto &error, const QString &reason) {
        if (error) {
            ticket->complete();
            return;
        }
        Dispatch::main(this, [this, operation, status, reason, noAccountMessage, ticket] {
            handleAccountStatus(status, reason, *operation, noAccountMessage);
            ticket->complete();
        });
    });
    return operation;
}

void TaskCloud::handleAccountStatus(AccountStatus status, const QString &reason, CloudOperation &operation,
                                    const char *noAccountMessage)
{
    const StatusWords words = wordsFor(status);
    trace(words.traced);
    if (words.message) {
        const bool ownWords = status == AccountStatus::NoAccount && noAccountMessage;
        m_store.setLastMessage(QLatin1String(ownWords ? noAccountMessage : words.message));
        operation.markFailed(reason);
    }
    m_notifications.post(QStringLiteral("update"));
}

// For an operation that does not wait. Its outcome is told when it is known.
bool TaskCloud::perform(const std::function<bool(const Work &work)> &operation,
                        const std::function<void(bool succeeded)> &then)
{
    const auto work = std::make_shared<CloudWork>();
    const auto untilAllIsAsked = work->begin();
    work->setOnDone([this, then, done = work.get()] {
        Dispatch::main(this, [this, then, succeeded = !done->hasFailed(), cause = done->cause()] {
            tellOutcome(succeeded, cause);
            if (then)
                then(succeeded);
        });
    });
    const bool flag = operation(work);
    untilAllIsAsked->complete();
    return flag;
}

void TaskCloud::tellOutcome(bool succeeded, const QString &cause)
{
    if (!succeeded) {
        Q_EMIT m_store.cloudFailed(cause);
        return;
    }
    if (isFailure(m_store.lastMessage())) { // which is no longer true
        m_store.setLastMessage({});
        m_notifications.post(QStringLiteral("update"));
    }
    Q_EMIT m_store.cloudSucceeded();
}

bool TaskCloud::addTask(const task &t)
{
    return perform([&](const Work &work) { return add(t, work); });
}

bool TaskCloud::editTask(const task &t)
{
    return perform([&](const Work &work) { return edit(t, work); });
}

bool TaskCloud::add(const task &t, const Work &work)
{
    const std::shared_ptr<CloudOperation> operation = beginOperation(work);
    save(newTaskRecord(t, m_store.inDarkMode()), operation);
    trace("Add Task to Cloud, hidden:", t.hidden);
    return operation->succeeded();
}

bool TaskCloud::edit(const task &t, const Work &work)
{
    const std::shared_ptr<CloudOperation> operation = beginOperation(work);
    m_container.privateCloudDatabase().performQuery(
        byKey(t.key), [this, t, operation, ticket = work->begin()](const auto &records, const auto &error) {
            if (error) {
                operation->markFailed(error->localizedDescription);
            } else if (operation->work().isAbandoned()) {
                // Nobody is told any more whether it has worked.
            } else if (records.isEmpty()) {
                trace("CloudKit Edit - Record Not Found - Add");
                operation->setSucceeded(add(t, operation->sharedWork()));
            } else {
                for (CloudRecord record : records) {
                    fillTaskRecord(record, t, m_store.inDarkMode());
                    save(record, operation);
                }
            }
            ticket->complete();
        });
    trace("CloudKit Edit - Return Saved:", operation->succeeded());
    return operation->succeeded();
}

void TaskCloud::save(const CloudRecord &record, const std::shared_ptr<CloudOperation> &operation)
{
    trace("Record:", record);
    m_container.privateCloudDatabase().saveRecord(
        record, [this, operation, ticket = operation->work().begin()](const auto &, const auto &error) {
            Dispatch::main(this, [operation, ticket, error] {
                trace(error ? "-CloudKit:Save Error-" : "-CloudKit:Save Success-");
                if (error)
                    operation->markFailed(error->localizedDescription);
                ticket->complete();
            });
        });
}

bool TaskCloud::deleteTask(const QString &key)
{
    Deletion &deletion = m_deletions[key];
    ++deletion.underWay;
    deletion.restored.reset();
    return perform([&](const auto &work) { return remove(byKey(key), work); },
                   [this, key](bool succeeded) { finishDeletion(key, succeeded); });
}

void TaskCloud::finishDeletion(const QString &key, bool succeeded)
{
    Deletion &deletion = m_deletions[key];
    deletion.hasSucceeded = deletion.hasSucceeded || succeeded;
    if (--deletion.underWay > 0)
        return;
    const std::optional<task> restored = deletion.restored;
    if (!deletion.hasSucceeded)
        m_deletions.remove(key);
    else if (restored)
        restoreTask(*restored);
}

void TaskCloud::restoreTask(const task &t)
{
    const auto deletion = m_deletions.find(t.key);
    if (deletion == m_deletions.end())
        return;
    if (deletion->underWay > 0) {
        deletion->restored = t;
        return;
    }
    m_deletions.erase(deletion);
    addTask(t);
}

bool TaskCloud::remove(const RecordQuery &query, const Work &work)
{
    const std::shared_ptr<CloudOperation> operation = beginOperation(work);
    CloudDatabase &database = m_container.privateCloudDatabase();
    const QString onNothing = query.predicate.key.isEmpty() ? noTasksInCloud() : QString();
    database.performQuery(query, [&database, operation, onNothing,
                                  ticket = work->begin()](const auto &records, const auto &error) {
        if (error || records.isEmpty())
            operation->markFailed(error ? error->localizedDescription : onNothing);
        for (const CloudRecord &record : records) {
            if (operation->work().isAbandoned())
                break;
            database.deleteRecord(record.recordID(),
                                  [operation, deletion = operation->work().begin()](const auto &failure) {
                                      if (failure)
                                          operation->markFailed(failure->localizedDescription);
                                      deletion->complete();
                                  });
        }
        ticket->complete();
    });
    return operation->succeeded();
}

void TaskCloud::createSharingZone(ZoneHandler handler)
{
    m_container.privateCloudDatabase().saveRecordZone(
        {QStringLiteral("SharingZone")}, [handler = std::move(handler)](const auto &zone, const auto &error) {
            handler(zone ? zone->zoneName : QString(), error ? error->localizedDescription : QString());
        });
}

void TaskCloud::discoverUser(const QString &phone)
{
    m_container.discoverUserIdentity(phone, [this](const auto &identity, const auto &error) {
        Dispatch::main(this, [identity, error] {
            if (identity && !error)
                trace("user identity was discovered ", *identity);
            else
                trace("fetch user by phone error ",
                      error ? error->localizedDescription : QStringLiteral("no identity"));
        });
    });
}

} // namespace oblino
