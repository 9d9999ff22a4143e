#include <core/taskplaces.h>

#include <utility>

namespace oblino {

namespace {

bool isEveryPlaceInOrder(const TaskPlaces &places, qsizetype count)
{
    qsizetype expected = 0;
    for (const qsizetype place : places) {
        if (place != expected++)
            return false;
    }
    return expected == count;
}

// Goes round each cycle of tasks that take each other's places, so that no second list is needed.
void moveInto(QList<task> &tasks, TaskPlaces &places)
{
    task *const list = tasks.data();
    for (qsizetype start = 0; start < tasks.size(); ++start) {
        const auto takePlaceOf = [&places](qsizetype free) {
            return std::exchange(places[static_cast<size_t>(free)], free);
        };
        qsizetype from = takePlaceOf(start);
        if (from == start)
            continue;
        task first = std::move(list[start]);
        qsizetype free = start;
        for (; from != start; from = takePlaceOf(free)) {
            list[free] = std::move(list[from]);
            free = from;
        }
        list[free] = std::move(first);
    }
}

} // namespace

QList<task> tasksAt(const QList<task> &tasks, const TaskPlaces &places)
{
    if (isEveryPlaceInOrder(places, tasks.size()))
        return tasks;
    QList<task> result;
    result.reserve(static_cast<qsizetype>(places.size()));
    for (const qsizetype place : places)
        result.append(tasks.at(place));
    return result;
}

QList<task> rearranged(QList<task> tasks, TaskPlaces places)
{
    if (!tasks.isDetached())
        return tasksAt(tasks, places);
    moveInto(tasks, places);
    return tasks;
}

} // namespace oblino
