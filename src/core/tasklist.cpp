#include <core/tasklist.h>

#include <core/taskordering.h>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

// The last task with that key; -1 when there is none.
qsizetype lastIndexOf(const QString &key, const QList<task> &list)
{
    const auto found =
        std::find_if(list.crbegin(), list.crend(), [&key](const task &t) { return t.key == key; });
    return std::distance(found, list.crend()) - 1;
}

} // namespace

void TaskList::setTasks(QList<task> tasks)
{
    m_view.keep(std::exchange(m_tasks, std::move(tasks)));
}

void TaskList::setIsSearching(bool searching)
{
    if (searching == m_isSearching)
        return;
    m_isSearching = searching;
    if (searching)
        m_backup = m_tasks;
    else
        setTasks(m_backup);
}

void TaskList::select(const QString &key)
{
    m_selected = lastIndexOf(key, all());
}

const task *TaskList::selectedTask() const
{
    return m_selected >= 0 && m_selected < all().size() ? &all().at(m_selected) : nullptr;
}

task *TaskList::selectedTask()
{
    return m_selected >= 0 && m_selected < all().size() ? &all()[m_selected] : nullptr;
}

void TaskList::sort(const SortDescriptor &descriptor)
{
    TaskPlaces order = placesInOrder(m_tasks, descriptor);
    m_view.follow(order);
    m_tasks = rearranged(std::move(m_tasks), std::move(order));
}

bool TaskList::moveSelected(bool up)
{
    const task *const moved = std::as_const(*this).selectedTask();
    if (!moved)
        return false;
    const qsizetype position = m_isSearching ? lastIndexOf(moved->key, m_tasks) : m_selected;
    const qsizetype other = up ? position - 1 : position + 1;
    const bool bothExist = position >= 0 && other >= 0 && other < m_tasks.size();
    if (bothExist) {
        m_tasks.swapItemsAt(position, other);
        m_view.exchange(position, other);
    }
    return bothExist;
}

void TaskList::removeSelected()
{
    if (!std::as_const(*this).selectedTask())
        return;
    if (!m_isSearching)
        m_view.setTasks(m_view.tasks(m_tasks));
    all().removeAt(m_selected);
}

void TaskList::clear()
{
    m_backup.clear();
    setTasks({});
}

} // namespace oblino
