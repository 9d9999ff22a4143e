#pragma once

#include <contacts/contacts.h>
#include <messaging/schedule.h>

#include <QObject>

#include <functional>
#include <memory>

namespace oblino {

/// What one send command sends, and to whom: a copy of everything, so that later changes do not matter.
struct SendingJob
{
    enum class Kind { ClientSchedules, TeamMemberSchedules, FreeText };

    Kind kind = Kind::FreeText;
    QList<Clients> clients = {}; ///< in the order in which they are served, before the team members
    QList<TeamMembers> teamMembers = {};
    QList<task> tasks = {};   ///< for schedules, in the order of scheduledOrder()
    ScheduleTerms terms = {}; ///< for schedules
    QString text = {};        ///< the free text

    /// The value of SendingState::progressIndex at the end.
    [[nodiscard]] qint64 totalSteps() const;
    /// What the status line says while the job goes on, and when it is done.
    [[nodiscard]] QString progressText(qint64 progressIndex, qint64 noOfSchedules) const;
    [[nodiscard]] QString doneText(qint64 progressIndex, qint64 noOfSchedules) const;
};

/// Runs send commands, one at a time: a worker that composes and sends on a background thread of low
/// priority, and a monitor on one of high priority that tells of progress. A run goes on to its end whatever
/// becomes of the window from which it was started.
///
/// The order of calls: start() on the main thread, which sets the counters of SendingState to 0; then the
/// worker changes them and progressed() is emitted on the main thread, about 30 times a second; then
/// finished(), after the worker has sent its last message.
class SendingRun : public QObject
{
    Q_OBJECT

public:
    struct Gateway
    {
        /// Whether schedules may be sent at this moment. Called by the worker.
        std::function<bool()> isOn;
        /// Sends a message and waits until that is over. Called by the worker.
        std::function<bool(const QString &message, const QString &toNumber)> send;
    };

    explicit SendingRun(Gateway gateway, QObject *parent = nullptr);
    /// Waits until the run is over; stop the gateway first for that to be soon.
    ~SendingRun() override;

    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    /// The job that runs, or ran last.
    [[nodiscard]] const SendingJob &job() const;

    /// Starts a job. Not while one is running.
    void start(const SendingJob &job);
    /// Has the worker send nothing more: it ends after the message that is under way.
    void stop();

Q_SIGNALS:
    void progressed();
    void finished();

private:
    struct Shared;

    void finish();

    std::shared_ptr<Shared> m_shared; // the threads' too
    bool m_isRunning = false;
};

} // namespace oblino
