#include <core/taskview.h>

#include <numeric>
#include <utility>

namespace oblino {

void TaskView::setPlaces(TaskPlaces places)
{
    m_places = std::move(places);
    m_kept.reset();
}

void TaskView::setTasks(QList<task> tasks)
{
    m_places.resize(static_cast<size_t>(tasks.size()));
    std::iota(m_places.begin(), m_places.end(), 0);
    m_kept = std::move(tasks);
}

void TaskView::follow(const TaskPlaces &order)
{
    if (m_kept)
        return;
    TaskPlaces newPlaces(order.size());
    for (size_t place = 0; place < order.size(); ++place)
        newPlaces[static_cast<size_t>(order[place])] = static_cast<qsizetype>(place);
    for (qsizetype &place : m_places)
        place = newPlaces[static_cast<size_t>(place)];
}

void TaskView::exchange(qsizetype first, qsizetype second)
{
    for (qsizetype &place : m_places) {
        if (!m_kept && (place == first || place == second))
            place = place == first ? second : first;
    }
}

void TaskView::keep(QList<task> list)
{
    if (!m_kept)
        m_kept = std::move(list);
}

const task &TaskView::at(const QList<task> &list, qsizetype row) const
{
    return (m_kept ? *m_kept : list).at(m_places[static_cast<size_t>(row)]);
}

std::optional<qsizetype> TaskView::placeOf(qsizetype row) const
{
    if (m_kept || row < 0 || row >= size())
        return {};
    return m_places[static_cast<size_t>(row)];
}

QList<task> TaskView::tasks(const QList<task> &list) const
{
    return tasksAt(m_kept ? *m_kept : list, m_places);
}

} // namespace oblino
