#include <core/taskmanager.h>

#include <base/clock.h>
#include <base/trace.h>

#include <algorithm>

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

qint64 TaskManager::setSelected(const QString &key)
{
    m_selected = lastIndexOf(key, fullList());
    return m_selected;
}

bool TaskManager::swapSelected(bool upper)
{
    if (!hasSelection())
        return false;
    const qsizetype position =
        m_isSearching ? lastIndexOf(m_backupTasks.at(m_selected).key, m_tasks) : m_selected;
    const qsizetype other = upper ? position - 1 : position + 1;
    const bool bothExist = position >= 0 && other >= 0 && other < m_tasks.size();
    if (bothExist)
        m_tasks.swapItemsAt(position, other);
    return bothExist;
}

bool TaskManager::closeSelected(QObject *)
{
    if (!hasSelection())
        return false;
    task &t = selectedList()[m_selected];
    t.status = ClosedStatus;
    t.statusName = QStringLiteral("Closed");
    return true;
}

bool TaskManager::cloneSelected(QObject *)
{
    if (!hasSelection())
        return false;
    task copy = fullList().at(m_selected);
    copy.key.clear();
    addTask(std::move(copy));
    return true;
}

task TaskManager::getSelectedTask() const
{
    if (hasSelection())
        return fullList().at(m_selected);
    const QDateTime moment = now();
    return task{.key = {},
                .date = moment,
                .name = {},
                .desc = {},
                .client = QStringLiteral("UnAssigned"),
                .teamMember = QStringLiteral("UnAssigned"),
                .color = Color(),
                .due = moment,
                .status = 0,
                .priority = 0,
                .statusName = {},
                .priorityName = {},
                .hidden = false,
                .startHour = m_defaultTimes.startHour,
                .startMin = m_defaultTimes.startMin,
                .endHour = m_defaultTimes.endHour,
                .endMin = m_defaultTimes.endMin};
}

void TaskManager::removeSelected()
{
    if (hasSelection())
        selectedList().removeAt(m_selected);
}

void TaskManager::hideSelected()
{
    setHiddenOfSelected(true);
}

void TaskManager::unhideSelected()
{
    setHiddenOfSelected(false);
}

bool TaskManager::getHiddenSelected() const
{
    if (!m_isSearching)
        trace("Selected:", m_selected);
    return hasSelection() && fullList().at(m_selected).hidden;
}

void TaskManager::setHiddenOfSelected(bool hidden)
{
    if (hasSelection())
        selectedList()[m_selected].hidden = hidden;
}

} // namespace oblino
