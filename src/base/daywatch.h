#pragma once

#include <base/clock.h>

#include <QObject>
#include <QTimer>

#include <functional>

namespace oblino {

/// Tells when the local calendar day becomes another: at midnight, and within a minute where the clock or the
/// time zone was set or the computer woke up.
class DayWatch : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    /// @param clock  gives the moment, in local time
    explicit DayWatch(Clock clock = &oblino::now, QObject *parent = nullptr);

    /// Looks at the clock at once.
    void look();

Q_SIGNALS:
    void dayChanged(QDate day);

private:
    void wait(const QDateTime &moment);

    Clock m_clock;
    QTimer m_timer;
    QDate m_day;
};

} // namespace oblino
