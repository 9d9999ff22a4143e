#pragma once

#include <core/sortdescriptor.h>
#include <core/task.h>
#include <core/taskview.h>

#include <QList>
#include <QString>

#include <utility>

namespace oblino {

/// The tasks of the store with those that the table shows and the one that is selected. While a search is
/// active every task is kept in backup(), and tasks() holds the results; selected() indexes all() at any
/// time.
class TaskList
{
public:
    [[nodiscard]] const QList<task> &tasks() const { return m_tasks; }
    void setTasks(QList<task> tasks);
    [[nodiscard]] const QList<task> &backup() const { return m_backup; }
    void setBackup(QList<task> tasks) { m_backup = std::move(tasks); }
    /// Every task, whether a search is active or not.
    [[nodiscard]] const QList<task> &all() const { return m_isSearching ? m_backup : m_tasks; }
    /// The same, to be added to or edited in place.
    [[nodiscard]] QList<task> &all() { return m_isSearching ? m_backup : m_tasks; }

    [[nodiscard]] bool isSearching() const { return m_isSearching; }
    /// Entering a search keeps every task aside; leaving it brings them back.
    void setIsSearching(bool searching);

    /// The rows of the table, which are of tasks().
    [[nodiscard]] TaskView &view() { return m_view; }
    [[nodiscard]] const TaskView &view() const { return m_view; }

    /// Index of the selected task in all(), -1 when nothing is selected.
    [[nodiscard]] qint64 selected() const { return m_selected; }
    void setSelected(qint64 index) { m_selected = index; }
    /// Selects the task with that key, the last one where several have it.
    void select(const QString &key);
    /// Null where nothing is selected.
    [[nodiscard]] const task *selectedTask() const;
    [[nodiscard]] task *selectedTask();

    /// Reorders tasks().
    void sort(const SortDescriptor &descriptor);
    /// Moves the selected task one place up or down in tasks(); selected() stays. @return whether it moved
    bool moveSelected(bool up);
    /// Removes the selected task; selected() stays.
    void removeSelected();
    void clear();

private:
    QList<task> m_tasks;
    QList<task> m_backup;
    bool m_isSearching = false;
    TaskView m_view;
    qint64 m_selected = -1;
};

} // namespace oblino
