#pragma once

#include <core/sortdescriptor.h>
#include <core/task.h>
#include <core/tasksearch.h>
#include <core/taskstep.h>
#include <core/taskview.h>

#include <QDate>
#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace oblino {

/// The tasks of the store with those that the table shows and the one that is selected. While a search is
/// active every task is kept in backup(), and tasks() holds the results; selected() indexes all() at any
/// time.
class TaskList
{
public:
    [[nodiscard]] const QList<task> &tasks() const;
    void setTasks(QList<task> tasks);
    [[nodiscard]] const QList<task> &backup() const { return m_backup; }
    void setBackup(QList<task> tasks);
    /// Every task, whether a search is active or not.
    [[nodiscard]] const QList<task> &all() const { return m_isSearching ? m_backup : m_tasks; }

    [[nodiscard]] bool isSearching() const { return m_isSearching; }
    /// Entering a search keeps every task aside; leaving it brings them back.
    void setIsSearching(bool searching);
    /// During a search makes tasks() those of backup() that match the term.
    void search(const QString &term);

    /// The rows of the table are those of tasks() that the view admits, from now until this is called again.
    void setFilter(qint64 itemStatus, QDate day);
    [[nodiscard]] qsizetype countInView() const { return m_view.size(); }
    [[nodiscard]] const task &taskInView(qsizetype row) const { return m_view.at(viewed(), row); }
    [[nodiscard]] QList<task> tasksInView() const { return m_view.tasks(viewed()); }
    void setTasksInView(QList<task> tasks) { m_view.setTasks(std::move(tasks)); }

    /// Index of the selected task in all(), -1 when nothing is selected.
    [[nodiscard]] qint64 selected() const { return m_selected; }
    void setSelected(qint64 index) { m_selected = index; }
    /// Selects the task with that key, the last one where several have it.
    void select(const QString &key);
    /// Null where nothing is selected.
    [[nodiscard]] const task *selectedTask() const;
    /// @return whether a task was selected, and so changed
    bool changeSelected(ChangeKind kind, const std::function<void(task &)> &change);

    /// Adds a task at the end of all().
    void append(task t, ChangeKind kind = ChangeKind::Add);
    /// Inverts the colour of every task.
    void invertColors();
    /// Reorders tasks().
    void sort(const SortDescriptor &descriptor);
    /// Moves the selected task one place up or down in tasks(); selected() stays. @return whether it moved
    bool moveSelected(bool up);
    /// Removes the selected task; selected() stays.
    void removeSelected();
    void clear();

    // Several tasks of all() at once. The rows of the table are gone after these, until setFilter(); the
    // results of a search, until search().

    /// The places in all() of rows of the table, rising.
    [[nodiscard]] TaskPlaces placesOfRows(const QList<int> &rows) const;
    /// @param places  rising, as in the next two
    void change(ChangeKind kind, const TaskPlaces &places, const std::function<void(task &)> &change);
    void remove(const TaskPlaces &places);
    /// Puts tasks, one behind the other, before the task that stands at a place, or at the end.
    void move(const TaskPlaces &places, qsizetype before);

    // What was done to all(), to be taken back

    /// From now on steps are kept, or no longer.
    void setRecording(bool isOn) { m_isRecording = isOn; }
    [[nodiscard]] bool isRecording() const { return m_isRecording; }
    /// Keeps a change that was made, together with the last one where that was of the same kind.
    void record(ChangeKind kind, const ListChange &change);
    [[nodiscard]] QList<TaskStep> takeSteps() { return std::exchange(m_steps, {}); }
    /// Takes a step back that was the last, or makes it again.
    void replay(const TaskStep &step, bool back);

private:
    [[nodiscard]] QList<task> &all() { return m_isSearching ? m_backup : m_tasks; }
    [[nodiscard]] const QList<task> &viewed() const { return m_results ? m_backup : m_tasks; }
    void assign(QList<task> tasks);
    void copyResults();
    void releaseRows();
    void make(ChangeKind kind, const ListChange &change);

    mutable QList<task> m_tasks;
    QList<task> m_backup;
    std::optional<TaskPlaces>
        m_results; // places in the backup, where m_tasks is made of them when it is wanted
    mutable bool m_areResultsMade = false;
    bool m_isSearching = false;
    TaskSearch m_search; // of all()
    TaskView m_view;     // of viewed()
    qint64 m_selected = -1;
    bool m_isRecording = false;
    QList<TaskStep> m_steps;
};

} // namespace oblino
