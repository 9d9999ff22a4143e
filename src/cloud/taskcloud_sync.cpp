// The operations on the whole copy, which wait for their answers.
#include <cloud/taskcloud.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <base/dispatch.h>
#include <base/trace.h>
#include <core/taskmanager.h>
#include <records/cloudcontainer.h>

#include <algorithm>

namespace oblino {

namespace {

RecordQuery allTasks()
{
    return {&taskRecordType(), RecordPredicate::all()};
}

} // namespace

bool TaskCloud::deleteAll()
{
    const auto work = std::make_shared<CloudWork>();
    (void)remove(allTasks(), work);
    return hasSucceeded(*work);
}

bool TaskCloud::send(const QList<task> &tasks)
{
    const auto work = std::make_shared<CloudWork>();
    for (const task &t : tasks)
        (void)edit(t, work);
    return hasSucceeded(*work);
}

bool TaskCloud::merge()
{
    const auto work = std::make_shared<CloudWork>();
    const auto operation = beginOperation(work, "iCloud:User is NOT Logged In");
    m_container.privateCloudDatabase().performQuery(
        allTasks(), [this, operation, ticket = work->begin()](const auto &records, const auto &error) {
            if (error || records.isEmpty()) {
                operation->markFailed(error ? error->localizedDescription : noTasksInCloud());
                ticket->complete();
                return;
            }
            Dispatch::main(this, [this, operation, ticket, records] {
                if (!operation->work().isAbandoned())
                    mergeRecords(records, *operation);
                ticket->complete();
            });
        });
    return hasSucceeded(*work);
}

// The flag of such an operation is true only when everything has been answered, and answered well.
bool TaskCloud::hasSucceeded(CloudWork &work)
{
    int shown = -1;
    if (++m_waits == 1)
        Q_EMIT m_store.cloudWaitBegan();
    const bool answered = work.wait(m_timeout, [this, &shown](qint64 done, qint64 asked) {
        // Answers lead to further requests, and the share of what is done would go back.
        const int percent = static_cast<int>(done * 100 / std::max<qint64>(asked, 1));
        if (percent > shown)
            Q_EMIT m_store.cloudProgressed(shown = percent);
    });
    if (--m_waits == 0)
        Q_EMIT m_store.cloudWaitEnded();
    const bool succeeded = answered && !work.hasFailed();
    const QString cause = work.cause();
    tellOutcome(succeeded, cause.isEmpty() ? tr("The cloud does not answer.") : cause);
    return succeeded;
}

} // namespace oblino
