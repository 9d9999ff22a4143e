#pragma once

#include <QByteArray>

#include <ctime>

namespace oblino {

/// Four time zones: at Greenwich, to its east, to its west, and one in which a day has no midnight.
inline constexpr const char *timeZones[] = {"UTC0", "JST-9", "PST8PDT,M3.2.0,M11.1.0",
                                            "STD5DST,M3.2.0/0,M11.1.0/1"};

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
