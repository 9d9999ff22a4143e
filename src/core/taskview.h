#pragma once

#include <core/taskplaces.h>

#include <QList>

#include <optional>

namespace oblino {

/// The rows of a table: tasks of a list, named by their places in it. Copying the tasks would take most of
/// the time that a change of the table takes. What happens to the list is told here, so that the rows stay
/// those that were chosen; a task that is edited in its place is shown as it is now.
class TaskView
{
public:
    void setPlaces(TaskPlaces places);
    /// Rows of their own, whatever the list holds.
    void setTasks(QList<task> tasks);

    /// The list now stands in that order.
    void follow(const TaskPlaces &order);
    /// Two tasks of the list have changed places.
    void exchange(qsizetype first, qsizetype second);
    /// Other tasks are taking the place of the list, which was this.
    void keep(QList<task> list);

    [[nodiscard]] qsizetype size() const { return static_cast<qsizetype>(m_places.size()); }
    /// @param list  the list, in which the places are looked up
    [[nodiscard]] const task &at(const QList<task> &list, qsizetype row) const;
    /// The place in the list of the task in a row; none where the rows are those of another list.
    [[nodiscard]] std::optional<qsizetype> placeOf(qsizetype row) const;
    [[nodiscard]] QList<task> tasks(const QList<task> &list) const;

private:
    TaskPlaces m_places;
    std::optional<QList<task>> m_kept; // where the places are those of another list than the present one
};

} // namespace oblino
