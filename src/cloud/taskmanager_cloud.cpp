// The operations of the task store on single tasks in the cloud.
#include <core/taskmanager.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <base/dispatch.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
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

void TaskManager::setCloud(CloudContainer *container, NotificationCenter *notifications,
                           std::chrono::milliseconds patience)
{
    m_cloudContainer = container;
    m_notifications = notifications;
    m_cloudPatience = patience;
}

std::shared_ptr<CloudOperation> TaskManager::beginCloudOperation(const std::shared_ptr<CloudWork> &work,
                                                                 const char *noAccountMessage)
{
    trace("Container:", [this] { return m_cloudContainer->description(); });
    auto operation = std::make_shared<CloudOperation>(work);
    m_cloudContainer->accountStatus([this, operation, noAccountMessage, ticket = work->ask()](
                                        AccountStatus status, const auto &error, const QString &reason) {
        if (error) {
            ticket->settle();
            return;
        }
        Dispatch::main(this, [this, operation, status, reason, noAccountMessage, ticket] {
            handleAccountStatus(status, reason, *operation, noAccountMessage);
            ticket->settle();
        });
    });
    return operation;
}

void TaskManager::handleAccountStatus(AccountStatus status, const QString &reason, CloudOperation &operation,
                                      const char *noAccountMessage)
{
    const StatusWords words = wordsFor(status);
    trace(words.traced);
    if (words.message) {
        const bool ownWords = status == AccountStatus::NoAccount && noAccountMessage;
        setLastMessage(QLatin1String(ownWords ? noAccountMessage : words.message));
        operation.clear(reason);
    }
    m_notifications->post(QStringLiteral("update"));
}

// For an operation that does not wait. Its outcome is told when it is known.
bool TaskManager::doInCloud(const std::function<bool(const std::shared_ptr<CloudWork> &work)> &operation)
{
    if (!m_cloudContainer)
        return false;
    const auto work = std::make_shared<CloudWork>();
    const auto untilAllIsAsked = work->ask();
    work->setOnDone([this, done = work.get()] {
        Dispatch::main(this, [this, succeeded = !done->hasFailed(), cause = done->cause()] {
            tellOutcome(succeeded, cause);
        });
    });
    const bool flag = operation(work);
    untilAllIsAsked->settle();
    return flag;
}

void TaskManager::tellOutcome(bool succeeded, const QString &cause)
{
    if (!succeeded) {
        Q_EMIT cloudFailed(cause);
        return;
    }
    if (isFailure(m_lastMessage)) { // which is no longer true
        setLastMessage({});
        m_notifications->post(QStringLiteral("update"));
    }
    Q_EMIT cloudSucceeded();
}

bool TaskManager::addTaskToCloud(const QString &key, const QDateTime &date, const QString &name,
                                 const QString &desc, const Color &color, const QDateTime &due, qint64 status,
                                 qint64 priority, const QString &statusName, const QString &priorityName,
                                 bool hidden, qint64 startHour, qint64 startMin, qint64 endHour,
                                 qint64 endMin, const QString &client, const QString &teamMember)
{
    const task t = makeTask(key, date, name, desc, color, due, status, priority, statusName, priorityName,
                            hidden, startHour, startMin, endHour, endMin, client, teamMember);
    return doInCloud([&](const auto &work) { return addToCloud(t, work); });
}

bool TaskManager::editTaskToCloud(const QString &key, const QDateTime &date, const QString &name,
                                  const QString &desc, const Color &color, const QDateTime &due,
                                  qint64 status, qint64 priority, const QString &statusName,
                                  const QString &priorityName, bool hidden, qint64 startHour, qint64 startMin,
                                  qint64 endHour, qint64 endMin, const QString &client,
                                  const QString &teamMember)
{
    const task t = makeTask(key, date, name, desc, color, due, status, priority, statusName, priorityName,
                            hidden, startHour, startMin, endHour, endMin, client, teamMember);
    return doInCloud([&](const auto &work) { return editInCloud(t, work); });
}

bool TaskManager::addToCloud(const task &t, const std::shared_ptr<CloudWork> &work)
{
    const std::shared_ptr<CloudOperation> operation = beginCloudOperation(work);
    saveToCloud(newTaskRecord(t, inDarkMode()), operation);
    trace("Add Task to Cloud, hidden:", t.hidden);
    return operation->flag();
}

bool TaskManager::editInCloud(const task &t, const std::shared_ptr<CloudWork> &work)
{
    const std::shared_ptr<CloudOperation> operation = beginCloudOperation(work);
    m_cloudContainer->privateCloudDatabase().performQuery(
        byKey(t.key), [this, t, operation, ticket = work->ask()](const auto &records, const auto &error) {
            if (error) {
                operation->clear(error->localizedDescription);
            } else if (operation->work().isAbandoned()) {
                // Nobody is told any more whether it has worked.
            } else if (records.isEmpty()) {
                trace("CloudKit Edit - Record Not Found - Add");
                operation->set(addToCloud(t, operation->sharedWork()));
            } else {
                for (CloudRecord record : records) {
                    fillTaskRecord(record, t, inDarkMode());
                    saveToCloud(record, operation);
                }
            }
            ticket->settle();
        });
    trace("CloudKit Edit - Return Saved:", operation->flag());
    return operation->flag();
}

void TaskManager::saveToCloud(const CloudRecord &record, const std::shared_ptr<CloudOperation> &operation)
{
    trace("Record:", record);
    m_cloudContainer->privateCloudDatabase().saveRecord(
        record, [this, operation, ticket = operation->work().ask()](const auto &, const auto &error) {
            Dispatch::main(this, [operation, ticket, error] {
                trace(error ? "-CloudKit:Save Error-" : "-CloudKit:Save Success-");
                if (error)
                    operation->clear(error->localizedDescription);
                ticket->settle();
            });
        });
}

bool TaskManager::deleteTaskToCloud(const QString &key)
{
    return doInCloud([&](const auto &work) { return deleteFromCloud(byKey(key), work); });
}

bool TaskManager::deleteFromCloud(const RecordQuery &query, const std::shared_ptr<CloudWork> &work)
{
    const std::shared_ptr<CloudOperation> operation = beginCloudOperation(work);
    CloudDatabase &database = m_cloudContainer->privateCloudDatabase();
    const QString onNothing = query.predicate.key.isEmpty() ? noTasksInCloud() : QString();
    database.performQuery(query, [&database, operation, onNothing, ticket = work->ask()](const auto &records,
                                                                                         const auto &error) {
        if (error || records.isEmpty())
            operation->clear(error ? error->localizedDescription : onNothing);
        for (const CloudRecord &record : records) {
            if (operation->work().isAbandoned())
                break;
            database.deleteRecord(record.recordID(),
                                  [operation, deletion = operation->work().ask()](const auto &failure) {
                                      if (failure)
                                          operation->clear(failure->localizedDescription);
                                      deletion->settle();
                                  });
        }
        ticket->settle();
    });
    return operation->flag();
}

void TaskManager::createSharingZone(ZoneHandler completionHandler)
{
    if (m_cloudContainer)
        m_cloudContainer->privateCloudDatabase().saveRecordZone({QStringLiteral("SharingZone")},
                                                                std::move(completionHandler));
}

void TaskManager::discoverUsersUsingApp(const QString &phone)
{
    if (!m_cloudContainer)
        return;
    m_cloudContainer->discoverUserIdentity(phone, [this](const auto &identity, const auto &error) {
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
