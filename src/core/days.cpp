#include <core/days.h>

#include <base/trace.h>

namespace oblino {

namespace {

QString twoDigits(qint64 number)
{
    return QString::asprintf("%02lld", static_cast<long long>(number));
}

} // namespace

DayOrder compareDays(QDate first, QDate second)
{
    if (first < second) {
        trace("ASCENDING");
        return DayOrder::Ascending;
    }
    if (first == second) {
        trace("SAME");
        return DayOrder::Same;
    }
    trace("DESCENDING");
    return DayOrder::Descending;
}

QString shortDate(const QDateTime &moment, const QLocale &locale)
{
    return locale.toString(moment.date(), QLocale::ShortFormat);
}

QDateTime movedByDays(const QDateTime &moment, qint64 days)
{
    const bool isStart = moment == moment.date().startOfDay(); // which is not midnight everywhere
    return isStart ? moment.date().addDays(days).startOfDay() : moment.addDays(days);
}

QString twoDigitTime(qint64 hour, qint64 minute)
{
    return twoDigits(hour) + QLatin1Char(':') + twoDigits(minute);
}

QString twelveHourTime(qint64 hour, qint64 minute)
{
    const bool morning = hour < 12;
    qint64 shown = hour;
    if (hour == 0)
        shown = 12;
    else if (hour > 12)
        shown = hour - 12;
    return twoDigits(shown) + QLatin1Char(':') + twoDigits(minute) +
           (morning ? QLatin1String("AM") : QLatin1String("PM"));
}

QString amPM(qint64 hour, qint64 min)
{
    trace("Hour:", hour, " Min:", min);
    return twelveHourTime(hour, min);
}

} // namespace oblino
