#include <core/tasklist.h>

#include <core/taskordering.h>
#include <core/taskviews.h>

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

const QList<task> &TaskList::tasks() const
{
    if (m_results && !m_areResultsMade) {
        m_tasks = tasksAt(m_backup, *m_results);
        m_areResultsMade = true;
    }
    return m_tasks;
}

void TaskList::setTasks(QList<task> tasks)
{
    if (m_isRecording && !m_isSearching) {
        for (const ListChange &change : ListChange::between(m_tasks, tasks))
            record(ChangeKind::Restore, change);
    }
    assign(std::move(tasks));
}

void TaskList::assign(QList<task> tasks)
{
    m_view.keep(viewed());
    m_results.reset();
    m_tasks = std::move(tasks);
    if (!m_isSearching)
        m_search.clear();
}

void TaskList::setBackup(QList<task> tasks)
{
    if (m_isRecording && m_isSearching) {
        for (const ListChange &change : ListChange::between(m_backup, tasks))
            record(ChangeKind::Restore, change);
    }
    copyResults();
    m_backup = std::move(tasks);
    if (m_isSearching)
        m_search.clear();
}

void TaskList::setIsSearching(bool searching)
{
    if (searching == m_isSearching)
        return;
    if (searching)
        m_backup = m_tasks;
    else
        assign(m_backup);
    m_isSearching = searching;
}

void TaskList::search(const QString &term)
{
    if (!m_isSearching)
        return;
    if (!m_results)
        m_view.keep(m_tasks);
    m_results = m_search.matching(m_backup, term);
    m_areResultsMade = false;
    m_tasks.clear();
}

void TaskList::setFilter(qint64 itemStatus, QDate day)
{
    m_view.setPlaces(m_results ? placesInView(m_backup, *m_results, itemStatus, day)
                               : placesInView(m_tasks, itemStatus, day));
}

void TaskList::select(const QString &key)
{
    m_selected = lastIndexOf(key, all());
}

const task *TaskList::selectedTask() const
{
    return m_selected >= 0 && m_selected < all().size() ? &all().at(m_selected) : nullptr;
}

bool TaskList::changeSelected(ChangeKind kind, const std::function<void(task &)> &change)
{
    const task *const selected = selectedTask();
    if (!selected)
        return false;
    const task before = *selected;
    task &changed = all()[m_selected];
    change(changed);
    m_search.change(m_selected);
    if (m_isRecording)
        record(kind, ListChange::exchanged({m_selected}, {before}, {m_selected}, {changed}));
    return true;
}

void TaskList::append(task t, ChangeKind kind)
{
    if (m_isRecording)
        record(kind, ListChange::exchanged({}, {}, {all().size()}, {t}));
    all().append(std::move(t));
}

void TaskList::invertColors()
{
    for (task &t : all())
        t.color = t.color.inverted();
}

void TaskList::sort(const SortDescriptor &descriptor)
{
    copyResults();
    TaskPlaces order = placesInOrder(m_tasks, descriptor);
    if (m_isRecording && !m_isSearching)
        record(ChangeKind::Sort, ListChange::reordered(order));
    m_view.follow(order);
    m_tasks = rearranged(std::move(m_tasks), std::move(order));
    if (!m_isSearching)
        m_search.clear();
}

bool TaskList::moveSelected(bool up)
{
    const task *const moved = selectedTask();
    if (!moved)
        return false;
    copyResults();
    const qsizetype position = m_isSearching ? lastIndexOf(moved->key, m_tasks) : m_selected;
    const qsizetype other = up ? position - 1 : position + 1;
    const bool bothExist = position >= 0 && other >= 0 && other < m_tasks.size();
    if (!bothExist)
        return false;
    if (m_isRecording && !m_isSearching) {
        const task stays = m_tasks.at(position);
        record(ChangeKind::Move, ListChange::exchanged({position}, {stays}, {other}, {stays}));
    }
    m_tasks.swapItemsAt(position, other);
    m_view.exchange(position, other);
    if (!m_isSearching)
        m_search.exchange(position, other);
    return true;
}

void TaskList::removeSelected()
{
    const task *const removed = selectedTask();
    if (!removed)
        return;
    if (m_isRecording)
        record(ChangeKind::Delete, ListChange::exchanged({m_selected}, {*removed}, {}, {}));
    copyResults();
    if (!m_isSearching)
        m_view.setTasks(m_view.tasks(m_tasks));
    all().removeAt(m_selected);
    m_search.remove(m_selected);
}

void TaskList::clear()
{
    assign({});
    m_backup.clear();
    m_search.clear();
    m_steps.clear();
    if (m_isRecording)
        m_steps.append({ChangeKind::Erase, {}});
}

// Before the places change: results and rows stay what they are.
void TaskList::copyResults()
{
    if (!m_results)
        return;
    m_tasks = tasks();
    m_view.keep(m_backup);
    m_results.reset();
}

} // namespace oblino
