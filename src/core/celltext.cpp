#include <core/celltext.h>

#include <base/trace.h>
#include <core/cellidentifiers.h>
#include <core/days.h>

namespace oblino {

namespace {

QString tracedTime(const char *label, qint64 hour, qint64 minute)
{
    QString text = twoDigitTime(hour, minute);
    trace(label, text);
    return text;
}

} // namespace

QString cellText(const task &t, const QString &identifier, const QLocale &locale)
{
    if (identifier == CellIdentifiers::DateCell)
        return shortDate(t.date, locale);
    if (identifier == CellIdentifiers::StartTime)
        return tracedTime("Start Time", t.startHour, t.startMin);
    if (identifier == CellIdentifiers::EndTime)
        return tracedTime("End Time", t.endHour, t.endMin);
    if (identifier == CellIdentifiers::NameCell)
        return t.name;
    if (identifier == CellIdentifiers::DescCell)
        return textUntilLineFeed(t.desc);
    if (identifier == CellIdentifiers::ClientCell)
        return t.client;
    if (identifier == CellIdentifiers::TeamMemberCell)
        return t.teamMember;
    if (identifier == CellIdentifiers::StatusCell)
        return t.statusName;
    if (identifier == CellIdentifiers::PriorityCell)
        return t.priorityName;
    if (identifier == CellIdentifiers::DueCell)
        return shortDate(t.due, locale);
    if (identifier == CellIdentifiers::KeyCell)
        return t.key;
    return {};
}

QString textUntilLineFeed(const QString &text)
{
    const qsizetype lineFeed = text.indexOf(QLatin1Char('\n'));
    trace("Index Truncate:", lineFeed < 0 ? text.size() : lineFeed,
          "End Index:", [&text] { return text.toUtf8().size(); });
    return lineFeed < 0 ? text : text.first(lineFeed) + QLatin1String("...");
}

} // namespace oblino
