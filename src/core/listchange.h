#pragma once

#include <core/task.h>
#include <core/taskplaces.h>

#include <QByteArray>
#include <QList>

namespace oblino {

/// One change of a list of tasks, which can be taken back and made again: tasks leave it, and others come
/// into it, or all change their places. It keeps no task that stays what it is.
class ListChange
{
public:
    /// Tasks left the list and others came into it; all others stand as before, one behind the other.
    /// @param left  places in the list of before, rising, of the tasks @p taken
    /// @param come  places in the list of after, rising, of the tasks @p brought
    static ListChange exchanged(TaskPlaces left, QList<task> taken, TaskPlaces come, QList<task> brought);
    /// @param order  the places of before, as they follow each other now
    static ListChange reordered(const TaskPlaces &order);
    /// The changes, one after the other, that make one list of another.
    static QList<ListChange> between(const QList<task> &before, const QList<task> &after);

    /// Changes of order, one after the other, as one; none where they end where they began.
    static QList<ListChange> joined(const QList<ListChange> &orders);

    /// Whether the list is the same after it.
    [[nodiscard]] bool isEmpty() const { return m_left.empty() && m_come.empty() && m_order.isEmpty(); }
    /// The tasks that it brings, or takes away where it brings none.
    [[nodiscard]] const QList<task> &tasks() const { return m_brought.isEmpty() ? m_taken : m_brought; }
    [[nodiscard]] const QList<task> &taken() const { return m_taken; }

    [[nodiscard]] QList<task> made(QList<task> list) const;
    [[nodiscard]] QList<task> takenBack(QList<task> list) const;
    /// Whether all tasks stay where they are, and some become others.
    [[nodiscard]] bool isInPlace() const { return m_left == m_come && m_order.isEmpty(); }
    /// The places of those that it brings.
    [[nodiscard]] const TaskPlaces &places() const { return m_come; }

    /// The appearance has changed, and the colours of the list with it.
    void invertColors();

private:
    TaskPlaces m_left;
    TaskPlaces m_come;
    QList<task> m_taken;
    QList<task> m_brought;
    QByteArray m_order; // two bytes a place as long as that is enough, then four
};

} // namespace oblino
