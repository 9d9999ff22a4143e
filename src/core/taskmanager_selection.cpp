#include <core/taskmanager.h>

#include <base/clock.h>
#include <base/trace.h>

#include <utility>

namespace oblino {

qint64 TaskManager::setSelected(const QString &key)
{
    m_list.select(key);
    return selected();
}

bool TaskManager::closeSelected(QObject *)
{
    return m_list.changeSelected(ChangeKind::Close, &closeTask);
}

bool TaskManager::reopenSelected()
{
    return m_list.changeSelected(ChangeKind::Reopen, &reopenTask);
}

bool TaskManager::cloneSelected(QObject *)
{
    const task *const original = m_list.selectedTask();
    if (!original)
        return false;
    task copy = *original;
    copy.key.clear();
    addTask(std::move(copy), ChangeKind::Clone);
    return true;
}

task TaskManager::getSelectedTask() const
{
    if (const task *const found = m_list.selectedTask())
        return *found;
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

bool TaskManager::getHiddenSelected() const
{
    if (!isSearching())
        trace("Selected:", selected());
    const task *const found = m_list.selectedTask();
    return found && found->hidden;
}

void TaskManager::setHiddenOfSelected(bool hidden)
{
    m_list.changeSelected(hidden ? ChangeKind::Hide : ChangeKind::Unhide,
                          [hidden](task &t) { t.hidden = hidden; });
}

} // namespace oblino
