#include <core/sharetext.h>

#include <config.h>
#include <core/days.h>

namespace oblino {

QString shareText(const task &t, const QString &title, const QString &footer, const QString &messageKey,
                  const QLocale &locale)
{
    return title + QStringLiteral("\n\nSchedule: ") + t.name + QStringLiteral("\nStart Date: ") +
           shortDate(t.date, locale) + QStringLiteral("\nStart Time: ") +
           twoDigitTime(t.startHour, t.startMin) + QStringLiteral("\nEnd Time: ") +
           twoDigitTime(t.endHour, t.endMin) + QStringLiteral("\nDue Date: ") + shortDate(t.due, locale) +
           QStringLiteral("\nDescription: ") + t.desc + QStringLiteral("\n\nClient: ") + t.client +
           QStringLiteral("\nTeam Member: ") + t.teamMember + QStringLiteral("\n\nTask Key: ") + t.key +
           QStringLiteral("\nMessage Key: ") + messageKey + QStringLiteral("\n\n") + footer +
           QStringLiteral("\n\n") + shareClosing();
}

QString shareClosing()
{
    return QStringLiteral("Sent with Oblino. Download from the App Store for Mac:\n\n" OBLINO_STORE_ADDRESS);
}

} // namespace oblino
