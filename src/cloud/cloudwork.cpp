#include <cloud/cloudwork.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <utility>

namespace oblino {

std::shared_ptr<PendingRequest> CloudWork::begin()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_asked;
    }
    return std::make_shared<PendingRequest>(shared_from_this());
}

void CloudWork::fail(const QString &cause)
{
    m_failed = true;
    const std::lock_guard lock(m_mutex);
    if (m_cause.isEmpty())
        m_cause = cause;
}

QString CloudWork::cause()
{
    const std::lock_guard lock(m_mutex);
    return m_cause;
}

void CloudWork::setOnDone(std::function<void()> onDone)
{
    const std::lock_guard lock(m_mutex);
    m_onDone = std::move(onDone);
}

void CloudWork::answered()
{
    std::function<void()> onDone;
    {
        const std::lock_guard lock(m_mutex);
        ++m_answered;
        if (m_waiter && !std::exchange(m_isTold, true))
            QMetaObject::invokeMethod(m_waiter, m_onAnswer, Qt::QueuedConnection);
        if (m_answered == m_asked)
            onDone = std::exchange(m_onDone, nullptr);
    }
    if (onDone)
        onDone();
}

void CloudWork::dropped()
{
    fail();
    setOnDone(nullptr); // perhaps nobody is left who could be told
    answered();
}

bool CloudWork::wait(std::chrono::milliseconds timeout,
                     const std::function<void(qint64 answered, qint64 asked)> &onProgress)
{
    QEventLoop loop;
    QTimer silence;
    silence.setSingleShot(true);
    QObject::connect(&silence, &QTimer::timeout, &loop, &QEventLoop::quit);
    const auto counts = [this] {
        const std::lock_guard lock(m_mutex);
        m_isTold = false;
        return std::pair(m_answered, m_asked);
    };
    {
        const std::lock_guard lock(m_mutex);
        m_waiter = &loop;
        m_onAnswer = [&] {
            silence.start(timeout);
            const auto [done, asked] = counts();
            onProgress(done, asked);
            if (done == asked)
                loop.quit();
        };
    }
    silence.start(timeout);
    auto [done, asked] = counts();
    if (done != asked)
        loop.exec();
    std::tie(done, asked) = counts();
    const std::lock_guard lock(m_mutex);
    m_waiter = nullptr;
    m_onAnswer = nullptr;
    m_abandoned = done != asked;
    return done == asked;
}

QString noTasksInCloud()
{
    return QCoreApplication::translate("CloudWork", "There are no tasks in the cloud.");
}

PendingRequest::PendingRequest(std::shared_ptr<CloudWork> work)
    : m_work(std::move(work))
{
}

PendingRequest::~PendingRequest()
{
    if (!m_completed)
        m_work->dropped();
}

void PendingRequest::complete()
{
    if (!m_completed.exchange(true))
        m_work->answered();
}

CloudOperation::CloudOperation(std::shared_ptr<CloudWork> work)
    : m_work(std::move(work))
{
}

void CloudOperation::markFailed(const QString &cause)
{
    m_succeeded = false;
    m_work->fail(cause);
}

} // namespace oblino
