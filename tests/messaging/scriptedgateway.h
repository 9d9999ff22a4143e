#pragma once

#include <messaging/sendingrun.h>

#include <QStringList>

#include <condition_variable>
#include <limits>
#include <mutex>

namespace oblino {

/// A gateway that keeps what it is to send, and answers what a test says.
class ScriptedGateway
{
public:
    static constexpr qsizetype all = std::numeric_limits<qsizetype>::max();

    [[nodiscard]] SendingRun::Gateway calls()
    {
        return {.isOn = [this] { return isOn(); },
                .send = [this](const QString &message, const QString &to) { return send(message, to); }};
    }

    /// What was sent, as "number:message", with blanks for the ends of lines.
    [[nodiscard]] QStringList sent() const
    {
        const std::lock_guard lock(m_mutex);
        return m_sent;
    }
    /// So many messages in all are answered; further ones wait.
    void allow(qsizetype messages)
    {
        const std::lock_guard lock(m_mutex);
        m_allowed = messages;
        m_changed.notify_all();
    }
    /// So many times in all the switch is found on.
    void setOn(qsizetype times)
    {
        const std::lock_guard lock(m_mutex);
        m_on = times;
    }
    /// The messages of these numbers, from 0, fail.
    void fail(const QList<qsizetype> &numbers)
    {
        const std::lock_guard lock(m_mutex);
        m_failing = numbers;
    }

private:
    bool isOn()
    {
        const std::lock_guard lock(m_mutex);
        return m_on-- > 0;
    }

    bool send(const QString &message, const QString &to)
    {
        std::unique_lock lock(m_mutex);
        const qsizetype number = m_sent.size();
        m_sent += to + QLatin1Char(':') + message.simplified();
        m_changed.wait(lock, [&] { return number < m_allowed; });
        return !m_failing.contains(number);
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QStringList m_sent;
    qsizetype m_allowed = all;
    qsizetype m_on = all;
    QList<qsizetype> m_failing;
};

} // namespace oblino
