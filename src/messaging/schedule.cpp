#include <messaging/schedule.h>

#include <base/trace.h>
#include <core/days.h>

#include <algorithm>

namespace oblino {

namespace {

QString personOf(const task &t, RecipientKind kind)
{
    return kind == RecipientKind::Client ? t.client : t.teamMember;
}

QString otherPersonOf(const task &t, RecipientKind kind)
{
    return kind == RecipientKind::Client ? t.teamMember : t.client;
}

bool isOnOrBefore(const QDateTime &first, const QDateTime &second)
{
    return compareDays(first.date(), second.date()) != DayOrder::Descending;
}

QString headerFor(const task &t, RecipientKind kind, const ScheduleTerms &terms)
{
    const QString label = kind == RecipientKind::Client ? QStringLiteral("Client Schedule: ")
                                                        : QStringLiteral("Team Member Schedule: ");
    return terms.title + QLatin1Char('\n') + label + personOf(t, kind) + QLatin1Char('\n') +
           terms.shortDate(terms.rangeStart) + QLatin1Char('-') + terms.shortDate(terms.rangeEnd) +
           QLatin1String("\n\r");
}

QString lineFor(const task &t, RecipientKind kind, const ScheduleTerms &terms)
{
    return terms.shortDate(t.date) + QLatin1Char(' ') + amPM(t.startHour, t.startMin) + QLatin1Char('-') +
           terms.shortDate(t.due) + QLatin1Char(' ') + amPM(t.endHour, t.endMin) + QLatin1Char(' ') + t.name +
           QLatin1Char('-') + otherPersonOf(t, kind);
}

} // namespace

QList<task> scheduledOrder(QList<task> tasks)
{
    std::stable_sort(tasks.begin(), tasks.end(),
                     [](const task &a, const task &b) { return a.date < b.date; });
    return tasks;
}

bool isScheduled(const task &t, RecipientKind kind, const Recipient &recipient, const ScheduleTerms &terms)
{
    return !recipient.name.isEmpty() && personOf(t, kind).toLower() == recipient.name.toLower() &&
           isOnOrBefore(terms.rangeStart, t.date) && isOnOrBefore(t.date, terms.rangeEnd);
}

void composeSchedule(RecipientKind kind, const Recipient &recipient, const QList<task> &tasks,
                     const ScheduleTerms &terms, const ScheduleEvents &events)
{
    trace("row value:", recipient.name);
    trace("row value:", recipient.phoneNo);
    trace("Sending messages ...");
    bool headerIsWritten = false;
    for (const task &t : tasks) {
        if (events.stops())
            return;
        trace("Sending step:", events.step());
        if (!isScheduled(t, kind, recipient, terms))
            continue;
        trace("Task Found:", t.name, personOf(t, kind), recipient.phoneNo);
        if (!headerIsWritten)
            events.send(headerFor(t, kind, terms));
        headerIsWritten = true;
        events.found();
        events.send(lineFor(t, kind, terms));
    }
    if (headerIsWritten && !terms.footer.isEmpty())
        events.send(terms.footer);
}

} // namespace oblino
