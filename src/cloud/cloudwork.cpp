#include <cloud/cloudwork.h>

#include <QEventLoop>
#include <QTimer>

#include <utility>

namespace oblino {

std::shared_ptr<CloudTicket> CloudWork::ask()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_asked;
    }
    return std::make_shared<CloudTicket>(shared_from_this());
}

void CloudWork::answered()
{
    const std::lock_guard lock(m_mutex);
    ++m_answered;
    if (m_waiter && !std::exchange(m_isTold, true))
        QMetaObject::invokeMethod(m_waiter, m_onAnswer, Qt::QueuedConnection);
}

bool CloudWork::wait(std::chrono::milliseconds patience,
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
            silence.start(patience);
            const auto [done, asked] = counts();
            onProgress(done, asked);
            if (done == asked)
                loop.quit();
        };
    }
    silence.start(patience);
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

CloudTicket::CloudTicket(std::shared_ptr<CloudWork> work)
    : m_work(std::move(work))
{
}

CloudTicket::~CloudTicket()
{
    if (m_settled)
        return;
    m_work->fail();
    m_work->answered();
}

void CloudTicket::settle()
{
    if (!m_settled.exchange(true))
        m_work->answered();
}

CloudOperation::CloudOperation(std::shared_ptr<CloudWork> work)
    : m_work(std::move(work))
{
}

void CloudOperation::clear()
{
    m_flag = false;
    m_work->fail();
}

} // namespace oblino
