#pragma once

#include <core/task.h>

#include <QList>
#include <QString>

namespace oblino {

/// The tasks of the store with the one that is selected. While a search is active they are kept in backup(),
/// and tasks() holds the results; selected() indexes all() at any time.
class TaskList
{
public:
    [[nodiscard]] const QList<task> &tasks() const { return m_tasks; }
    [[nodiscard]] QList<task> &tasks() { return m_tasks; }
    [[nodiscard]] const QList<task> &backup() const { return m_backup; }
    [[nodiscard]] QList<task> &backup() { return m_backup; }
    /// Every task, whether a search is active or not.
    [[nodiscard]] const QList<task> &all() const { return m_isSearching ? m_backup : m_tasks; }
    [[nodiscard]] QList<task> &all() { return m_isSearching ? m_backup : m_tasks; }

    [[nodiscard]] bool isSearching() const { return m_isSearching; }
    /// Entering a search keeps every task aside; leaving it brings them back.
    void setIsSearching(bool searching);

    /// Index of the selected task in all(), -1 when nothing is selected.
    [[nodiscard]] qint64 selected() const { return m_selected; }
    void setSelected(qint64 index) { m_selected = index; }
    /// Selects the task with that key, the last one where several have it.
    void select(const QString &key);
    /// Null where nothing is selected.
    [[nodiscard]] const task *selectedTask() const;
    [[nodiscard]] task *selectedTask();

    /// Moves the selected task one place up or down in tasks(); selected() stays. @return whether it moved
    bool moveSelected(bool up);
    /// Removes the selected task; selected() stays.
    void removeSelected();
    void clear();

private:
    QList<task> m_tasks;
    QList<task> m_backup;
    bool m_isSearching = false;
    qint64 m_selected = -1;
};

} // namespace oblino
