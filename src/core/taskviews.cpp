#include <core/taskviews.h>

#include <core/days.h>

namespace oblino {

namespace {

enum View : qint64 {
    AllView = 0,
    HiddenView = 3,
    HiddenOpenView = 4,
    HiddenClosedView = 5,
    GlobalOpenView = 7,
    GlobalClosedView = 8,
    DueTodayView = 9,
};

// What a view admits beside the tasks of the ordinary ones.
bool admitted(const task &t, qint64 itemStatus, QDate day)
{
    switch (itemStatus) {
    case HiddenView:
        return t.hidden;
    case HiddenOpenView:
        return t.hidden && t.status == OpenStatus;
    case HiddenClosedView:
        return t.hidden && t.status == ClosedStatus;
    case globalAllView:
        return true;
    case GlobalOpenView:
        return t.status == OpenStatus;
    case GlobalClosedView:
        return t.status == ClosedStatus;
    case DueTodayView:
        return compareDays(day, t.due.date()) == DayOrder::Same;
    default:
        return false;
    }
}

} // namespace

QStringList viewLabels()
{
    return {QStringLiteral("All"),        QStringLiteral("Open"),        QStringLiteral("Closed"),
            QStringLiteral("Hidden"),     QStringLiteral("Hidden Open"), QStringLiteral("Hidden Closed"),
            QStringLiteral("Global-All"), QStringLiteral("Global-Open"), QStringLiteral("Global-Closed"),
            QStringLiteral("Due Today")};
}

size_t occurrencesInView(const task &t, qint64 itemStatus, QDate day)
{
    const bool ordinary = (itemStatus == AllView || t.status == itemStatus - 1) && !t.hidden;
    return (ordinary ? 1U : 0U) + (admitted(t, itemStatus, day) ? 1U : 0U);
}

TaskPlaces placesInView(const QList<task> &tasks, qint64 itemStatus, QDate day)
{
    TaskPlaces places;
    places.reserve(static_cast<size_t>(tasks.size()));
    for (qsizetype place = 0; place < tasks.size(); ++place)
        places.insert(places.end(), occurrencesInView(tasks.at(place), itemStatus, day), place);
    return places;
}

TaskPlaces placesInView(const QList<task> &tasks, const TaskPlaces &among, qint64 itemStatus, QDate day)
{
    TaskPlaces places;
    places.reserve(among.size());
    for (const qsizetype place : among)
        places.insert(places.end(), occurrencesInView(tasks.at(place), itemStatus, day), place);
    return places;
}

} // namespace oblino
