#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

namespace oblino {

/// Watches how late this thread's event loop answers.
class Lateness
{
public:
    Lateness()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { take(); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_since.start();
        m_timer.start(interval);
    }

    /// Milliseconds by which the loop was late at worst.
    [[nodiscard]] qint64 worst() const { return std::max(m_worst, m_since.elapsed() - interval); }

private:
    static constexpr int interval = 5;

    void take() { m_worst = std::max(m_worst, m_since.restart() - interval); }

    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_worst = 0;
};

} // namespace oblino
