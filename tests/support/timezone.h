#pragma once

#include <QByteArray>

#include <ctime>

namespace oblino {

/// Takes the process into a time zone for a while.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray &name) { set(name); }
    TimeZone(const TimeZone &) = delete;
    TimeZone &operator=(const TimeZone &) = delete;
    ~TimeZone() { set(m_before); }

private:
    static void set(const QByteArray &name)
    {
        name.isEmpty() ? qunsetenv("TZ") : qputenv("TZ", name);
        tzset();
    }

    QByteArray m_before = qgetenv("TZ");
};

} // namespace oblino
