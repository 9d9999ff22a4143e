#include <messaging/sendingrun.h>

#include <base/dispatch.h>
#include <base/trace.h>
#include <messaging/sendingstate.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr auto pollTime = 33ms; // about 30 times a second

Recipient recipient(const auto &contact)
{
    return {contact.name, contact.phoneNo};
}

} // namespace

qint64 SendingJob::totalSteps() const
{
    const qint64 recipients = clients.size() + teamMembers.size();
    return kind == Kind::FreeText ? recipients : recipients * tasks.size();
}

QString SendingJob::progressText(qint64 progressIndex, qint64 noOfSchedules) const
{
    if (kind == Kind::FreeText)
        return doneText(progressIndex, noOfSchedules);
    return QStringLiteral("Steps Performed:%1 of %2 Sending Schedule#:%3")
        .arg(progressIndex)
        .arg(totalSteps())
        .arg(noOfSchedules);
}

QString SendingJob::doneText(qint64 progressIndex, qint64 noOfSchedules) const
{
    const auto pattern = [this] {
        switch (kind) {
        case Kind::ClientSchedules:
            return QStringLiteral("Steps Performed:%1 Schedules#:%2");
        case Kind::TeamMemberSchedules:
            return QStringLiteral("Steps Performed:%1 Schedules:%2");
        case Kind::FreeText:
            break;
        }
        return QStringLiteral("Performing Step#:%1 Sending Message#:%2");
    };
    return pattern().arg(progressIndex).arg(noOfSchedules);
}

// What the run, its worker and its monitor share.
struct SendingRun::Shared
{
    explicit Shared(Gateway how)
        : gateway(std::move(how))
    {
    }

    void work();
    void sendSchedules();
    void sendText();
    void sendTextTo(const Recipient &to, qint64 step);
    [[nodiscard]] bool waitForWorker(std::chrono::milliseconds time);

    SendingJob job; // changed only while no thread runs
    Gateway gateway;
    Clients sendingClientTask; // who is being served
    TeamMembers sendingTeamMemberTask;
    std::atomic<bool> stops = false;

    std::mutex mutex;
    std::condition_variable changed;
    int running = 0; // threads
    bool workerIsDone = false;
};

void SendingRun::Shared::work()
{
    if (job.kind == SendingJob::Kind::FreeText)
        sendText();
    else
        sendSchedules();
    const std::lock_guard lock(mutex);
    workerIsDone = true;
    changed.notify_all();
}

void SendingRun::Shared::sendSchedules()
{
    Recipient to;
    const ScheduleEvents events = {.step = [] { return ++SendingState::progressIndex; },
                                   .found = [] { ++SendingState::noOfSchedules; },
                                   .send =
                                       [this, &to](const QString &message) {
                                           if (!stops && gateway.isOn())
                                               SendingState::success = gateway.send(message, to.phoneNo);
                                       },
                                   .stops = [this] { return stops.load(); }};
    for (const Clients &client : std::as_const(job.clients)) {
        sendingClientTask = client;
        to = recipient(sendingClientTask);
        composeSchedule(RecipientKind::Client, to, job.tasks, job.terms, events);
    }
    for (const TeamMembers &member : std::as_const(job.teamMembers)) {
        sendingTeamMemberTask = member;
        to = recipient(sendingTeamMemberTask);
        composeSchedule(RecipientKind::TeamMember, to, job.tasks, job.terms, events);
    }
}

void SendingRun::Shared::sendText()
{
    qint64 step = 0;
    for (const Clients &client : std::as_const(job.clients)) {
        sendingClientTask = client;
        sendTextTo(recipient(sendingClientTask), ++step);
    }
    for (const TeamMembers &member : std::as_const(job.teamMembers)) {
        sendingTeamMemberTask = member;
        sendTextTo(recipient(sendingTeamMemberTask), ++step);
    }
}

void SendingRun::Shared::sendTextTo(const Recipient &to, qint64 step)
{
    if (stops)
        return;
    trace("row value:", to.name);
    trace("row value:", to.phoneNo);
    trace("Sending messages ...");
    SendingState::success = gateway.send(job.text, to.phoneNo);
    SendingState::progressIndex = step;
    ++SendingState::noOfSchedules;
}

bool SendingRun::Shared::waitForWorker(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, time, [this] { return workerIsDone; });
}

SendingRun::SendingRun(Gateway gateway, QObject *parent)
    : QObject(parent)
    , m_shared(std::make_shared<Shared>(std::move(gateway)))
{
}

SendingRun::~SendingRun()
{
    stop();
    std::unique_lock lock(m_shared->mutex);
    m_shared->changed.wait(lock, [this] { return m_shared->running == 0; });
}

const SendingJob &SendingRun::job() const
{
    return m_shared->job;
}

void SendingRun::stop()
{
    m_shared->stops = true;
}

void SendingRun::start(const SendingJob &job)
{
    SendingState::progressIndex = 0;
    SendingState::noOfSchedules = 0;
    m_isRunning = true;
    m_shared->job = job;
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->workerIsDone = false;
        m_shared->running += 2; // those of the run before may not have quite gone
    }
    const auto onThread = [shared = m_shared](Dispatch::Priority priority,
                                              const std::function<void()> &work) {
        Dispatch::background(priority, [shared, work] {
            work();
            const std::lock_guard lock(shared->mutex);
            --shared->running;
            shared->changed.notify_all();
        });
    };
    // The run outlives both threads: it waits for them when it goes.
    onThread(Dispatch::Priority::High,
             [this, total = job.totalSteps(), isText = job.kind == SendingJob::Kind::FreeText] {
                 bool isDone = false;
                 do {
                     isDone = m_shared->waitForWorker(pollTime);
                     const qint64 index = SendingState::progressIndex;
                     trace("--------------------ASYNC--------------------------:", index);
                     trace("Progres Index:", index, "Max Count:", total);
                     Dispatch::main(this, [this] { Q_EMIT progressed(); });
                 } while (!isDone);
                 if (isText)
                     trace("---Out of loop!---");
                 Dispatch::main(this, [this] { finish(); });
             });
    onThread(Dispatch::Priority::Low, [shared = m_shared] { shared->work(); });
}

void SendingRun::finish()
{
    m_isRunning = false;
    trace("Success:", SendingState::success.load());
    Q_EMIT finished();
}

} // namespace oblino
