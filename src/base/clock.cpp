#include <base/clock.h>

namespace oblino {

QDateTime now()
{
    return QDateTime::currentDateTime();
}

QDate today()
{
    return QDate::currentDate();
}

} // namespace oblino
