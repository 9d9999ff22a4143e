#include <base/daywatch.h>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

constexpr qint64 longestWait = 60'000; // ms; timers stand still while the computer sleeps

} // namespace

DayWatch::DayWatch(Clock clock, QObject *parent)
    : QObject(parent)
    , m_clock(std::move(clock))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &DayWatch::look);
    const QDateTime moment = m_clock();
    m_day = moment.date();
    wait(moment);
}

void DayWatch::look()
{
    const QDateTime moment = m_clock();
    wait(moment);
    if (const QDate day = moment.date(); day != std::exchange(m_day, day))
        Q_EMIT dayChanged(day);
}

void DayWatch::wait(const QDateTime &moment)
{
    const qint64 untilTomorrow = moment.msecsTo(moment.date().addDays(1).startOfDay());
    m_timer.start(static_cast<int>(std::clamp<qint64>(untilTomorrow, 1, longestWait)));
}

} // namespace oblino
