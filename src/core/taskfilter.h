#pragma once

#include <core/task.h>

#include <QDate>
#include <QLocale>
#include <QString>

#include <optional>

namespace oblino {

/// What of the tasks of a view one wants to see. What is left open admits every task.
struct TaskFilter
{
    enum class Range { AnyDay, Today, ThisWeek, FromTo };

    QString client = {};     ///< empty: any; upper and lower case count as the same
    QString teamMember = {}; ///< the same
    std::optional<qint64> status = {};
    std::optional<qint64> priority = {};
    Range range = Range::AnyDay;
    QDate from = {}; ///< of Range::FromTo; invalid: no first day
    QDate to = {};   ///< the same; invalid: no last day

    /// Whether it admits every task.
    [[nodiscard]] bool isEmpty() const
    {
        return client.isEmpty() && teamMember.isEmpty() && !status && !priority && range == Range::AnyDay;
    }
    [[nodiscard]] bool operator==(const TaskFilter &other) const = default;
};

/// A filter made ready for one day and many tasks. A task is of a range of days where one of its own days,
/// from its date to its due date, is; where it is due before it starts, its date alone counts.
class TaskSieve
{
public:
    /// @param firstDay  on which a week begins
    TaskSieve(const TaskFilter &filter, QDate today, Qt::DayOfWeek firstDay);

    [[nodiscard]] bool admits(const task &t) const;

private:
    TaskFilter m_filter;
    QDate m_from;
    QDate m_to;
};

/// The filter as one line of text, which may hold any name.
[[nodiscard]] QString filterText(const TaskFilter &filter);
/// None for a text that filterText() would not have made.
[[nodiscard]] std::optional<TaskFilter> filterOfText(const QString &text);

} // namespace oblino
