#include <core/filedays.h>

#include <base/clock.h>

namespace oblino {

FileDays fileDays(QDate today)
{
    const int first = today.year() - 50;
    return {QDate(first, 1, 1), QDate(first + 99, 12, 31)};
}

QDateTime withinFileDays(const QDateTime &moment)
{
    if (!moment.isValid())
        return now();
    const FileDays days = fileDays(today());
    if (moment.date() < days.first)
        return days.first.startOfDay();
    return moment.date() > days.last ? days.last.startOfDay() : moment;
}

} // namespace oblino
