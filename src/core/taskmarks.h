#pragma once

#include <core/task.h>

#include <QDate>
#include <QList>

namespace oblino {

/// What a day makes of a task.
struct TaskMarks
{
    bool startsToday = false;
    bool isDueToday = false;
    bool isOverdue = false; ///< it is open, and was due before
};

[[nodiscard]] TaskMarks marksOf(const task &t, QDate today);

/// How many open tasks that are not hidden are due on a day, and how many were before.
struct DueCounts
{
    qsizetype today = 0;
    qsizetype overdue = 0;
};

[[nodiscard]] DueCounts dueCounts(const QList<task> &tasks, QDate today);

} // namespace oblino
