#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace oblino {

class PendingRequest;

/// The requests of one command to the cloud, those that follow from their answers included, until all are
/// answered. Safe to use from any thread.
class CloudWork : public std::enable_shared_from_this<CloudWork>
{
public:
    CloudWork() = default;
    CloudWork(const CloudWork &) = delete;
    CloudWork &operator=(const CloudWork &) = delete;

    /// A request is about to be made. The ticket goes along with it.
    [[nodiscard]] std::shared_ptr<PendingRequest> begin();

    /// Something of the work has failed.
    /// @param cause  a sentence for the user; empty where there is nothing to say
    void fail(const QString &cause = {});
    [[nodiscard]] bool hasFailed() const { return m_failed; }
    /// The first cause of a failure that was given.
    [[nodiscard]] QString cause();
    /// Sets what is called once every request is answered, on the thread of the last answer; never where the
    /// service has left a request unanswered for good.
    void setOnDone(std::function<void()> onDone);
    /// Whether nobody waits for it any more, so that nothing further is to be begun.
    [[nodiscard]] bool isAbandoned() const { return m_abandoned; }

    /// Waits on the main thread, with the event loop running, until every request is answered; but no longer
    /// than `timeout` without any answer, nor when the event loops end. What is left then is abandoned.
    /// @param onProgress  told now and then how many of the requests made so far are answered
    /// @return whether every request was answered
    [[nodiscard]] bool wait(std::chrono::milliseconds timeout,
                            const std::function<void(qint64 answered, qint64 asked)> &onProgress);

private:
    friend class PendingRequest;

    void answered();
    void dropped();

    std::mutex m_mutex; // for what follows
    qint64 m_asked = 0;
    qint64 m_answered = 0;
    QObject *m_waiter = nullptr; // on the main thread, told of answers
    std::function<void()> m_onAnswer;
    bool m_isTold = false; // and has not looked yet
    std::function<void()> m_onDone;
    QString m_cause;

    std::atomic<bool> m_failed = false;
    std::atomic<bool> m_abandoned = false;
};

/// The cause of a failure in words, where the cloud has no record of any task.
[[nodiscard]] QString noTasksInCloud();

/// Stands for one request of a work. It is settled when the answer has been dealt with; one that goes
/// unsettled makes the work fail.
class PendingRequest
{
public:
    explicit PendingRequest(std::shared_ptr<CloudWork> work);
    PendingRequest(const PendingRequest &) = delete;
    PendingRequest &operator=(const PendingRequest &) = delete;
    ~PendingRequest();

    void complete();

private:
    std::shared_ptr<CloudWork> m_work;
    std::atomic<bool> m_completed = false;
};

/// One operation and its success flag, shared with the handlers of its requests.
class CloudOperation
{
public:
    explicit CloudOperation(std::shared_ptr<CloudWork> work);

    [[nodiscard]] CloudWork &work() const { return *m_work; }
    [[nodiscard]] std::shared_ptr<CloudWork> sharedWork() const { return m_work; }
    [[nodiscard]] bool succeeded() const { return m_succeeded; }
    void setSucceeded(bool succeeded) { m_succeeded = succeeded; }
    /// @param cause  as in CloudWork::fail()
    void markFailed(const QString &cause = {});

private:
    std::shared_ptr<CloudWork> m_work;
    std::atomic<bool> m_succeeded = true;
};

} // namespace oblino
