// The operations of the task store on the whole cloud copy. They wait for their answers.
#include <core/taskmanager.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <base/dispatch.h>
#include <base/trace.h>
#include <records/cloudcontainer.h>

#include <algorithm>

namespace oblino {

namespace {

RecordQuery allTasks()
{
    return {&taskRecordType(), RecordPredicate::all()};
}

} // namespace

bool TaskManager::deleteAllTasksToCloud()
{
    if (!m_cloudContainer)
        return false;
    const auto work = std::make_shared<CloudWork>();
    (void)deleteFromCloud(allTasks(), work);
    return hasSucceeded(*work);
}

bool TaskManager::syncToCloudFromLocal()
{
    trace("Sync To CloudKit, #Tasks:", m_tasks.size());
    if (!m_cloudContainer)
        return m_tasks.isEmpty();
    const auto work = std::make_shared<CloudWork>();
    const QList<task> sent = m_tasks; // the list may change while the answers are waited for
    for (const task &t : sent)
        (void)editInCloud(t, work);
    return hasSucceeded(*work);
}

bool TaskManager::syncToLocalFromCloud()
{
    if (!m_cloudContainer)
        return false;
    const auto work = std::make_shared<CloudWork>();
    const auto operation = beginCloudOperation(work, "iCloud:User is NOT Logged In");
    m_cloudContainer->privateCloudDatabase().performQuery(
        allTasks(), [this, operation, ticket = work->ask()](const auto &records, const auto &error) {
            if (error || records.isEmpty()) {
                operation->clear(error ? error->localizedDescription : noTasksInCloud());
                ticket->settle();
                return;
            }
            Dispatch::main(this, [this, operation, ticket, records] {
                if (!operation->work().isAbandoned())
                    mergeFromCloud(records, *operation);
                ticket->settle();
            });
        });
    return hasSucceeded(*work);
}

// The flag of such an operation is true only when everything has been answered, and answered well.
bool TaskManager::hasSucceeded(CloudWork &work)
{
    int shown = -1;
    if (++m_cloudWaits == 1)
        Q_EMIT cloudWaitBegan();
    const bool answered = work.wait(m_cloudPatience, [this, &shown](qint64 done, qint64 asked) {
        // Answers lead to further requests, and the share of what is done would go back.
        const int percent = static_cast<int>(done * 100 / std::max<qint64>(asked, 1));
        if (percent > shown)
            Q_EMIT cloudProgressed(shown = percent);
    });
    if (--m_cloudWaits == 0)
        Q_EMIT cloudWaitEnded();
    const bool succeeded = answered && !work.hasFailed();
    const QString cause = work.cause();
    tellOutcome(succeeded, cause.isEmpty() ? tr("The cloud does not answer.") : cause);
    return succeeded;
}

} // namespace oblino
