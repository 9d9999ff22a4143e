// Changes of several tasks at once, and steps that are taken back.
#include <core/tasklist.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace oblino {

TaskPlaces TaskList::placesOfRows(const QList<int> &rows) const
{
    TaskPlaces places;
    for (const int row : rows) {
        if (const std::optional<qsizetype> place = m_view.placeOf(row))
            places.push_back(*place);
    }
    std::ranges::sort(places);
    places.erase(std::unique(places.begin(), places.end()), places.end()); // a view may list a task twice
    return places;
}

void TaskList::change(ChangeKind kind, const TaskPlaces &places, const std::function<void(task &)> &change)
{
    const QList<task> before = tasksAt(all(), places);
    QList<task> after = before;
    for (task &t : after)
        change(t);
    make(kind, ListChange::exchanged(places, before, places, after));
}

void TaskList::remove(const TaskPlaces &places)
{
    make(ChangeKind::Delete, ListChange::exchanged(places, tasksAt(all(), places), {}, {}));
}

void TaskList::move(const TaskPlaces &places, qsizetype before)
{
    const auto passed = std::ranges::count_if(places, [before](qsizetype place) { return place < before; });
    TaskPlaces target(places.size());
    std::iota(target.begin(), target.end(), before - passed);
    const QList<task> moved = tasksAt(all(), places);
    if (target != places)
        make(ChangeKind::Move, ListChange::exchanged(places, moved, target, moved));
}

void TaskList::make(ChangeKind kind, const ListChange &change)
{
    if (change.isEmpty())
        return;
    if (m_isRecording)
        record(kind, change);
    replay({kind, {change}}, false);
}

void TaskList::record(ChangeKind kind, const ListChange &change)
{
    if (change.isEmpty())
        return;
    if (m_steps.isEmpty() || m_steps.constLast().kind != kind)
        m_steps.append({kind, {}});
    m_steps.last().changes.append(change);
}

void TaskList::replay(const TaskStep &step, bool back)
{
    releaseRows();
    QList<task> &list = all();
    const qsizetype count = step.changes.size();
    for (qsizetype i = 0; i < count; ++i) {
        const ListChange &change = step.changes.at(back ? count - 1 - i : i);
        list = back ? change.takenBack(std::move(list)) : change.made(std::move(list));
        if (!change.isInPlace())
            m_search.clear();
        else
            std::ranges::for_each(change.places(), [this](qsizetype place) { m_search.change(place); });
    }
}

// Nothing else holds the list then, so that it is changed without a copy.
void TaskList::releaseRows()
{
    m_view.setPlaces({});
    if (!m_isSearching)
        return;
    m_results.reset();
    m_tasks.clear();
}

} // namespace oblino
