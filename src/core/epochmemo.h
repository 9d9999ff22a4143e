#pragma once

#include <QDateTime>
#include <QHash>

namespace oblino {

/// Converts local times to milliseconds since 1970-01-01T00:00 UTC and remembers what it has converted. The
/// conversion asks the time zone rules, which takes about a microsecond; the dates of a list repeat.
class EpochMemo
{
public:
    [[nodiscard]] qint64 milliseconds(const QDateTime &moment)
    {
        if (moment.timeSpec() != Qt::LocalTime || moment.isNull())
            return moment.toMSecsSinceEpoch();
        const qint64 local = moment.date().toJulianDay() * msPerDay + moment.time().msecsSinceStartOfDay();
        // A local time that comes twice is told apart by its daylight-saving state.
        const auto found = m_known.constFind({local, moment.isDaylightTime()});
        if (found != m_known.cend())
            return *found;
        return *m_known.insert({local, moment.isDaylightTime()}, moment.toMSecsSinceEpoch());
    }

private:
    static constexpr qint64 msPerDay = 86'400'000;
    QHash<std::pair<qint64, bool>, qint64> m_known;
};

} // namespace oblino
