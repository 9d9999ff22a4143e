#include <core/taskmarks.h>

namespace oblino {

TaskMarks marksOf(const task &t, QDate today)
{
    const QDate due = t.due.date();
    return {t.date.date() == today, due == today, t.status == OpenStatus && due < today};
}

DueCounts dueCounts(const QList<task> &tasks, QDate today)
{
    DueCounts counts;
    for (const task &t : tasks) {
        if (t.status != OpenStatus || t.hidden)
            continue;
        const QDate due = t.due.date();
        if (due == today)
            ++counts.today;
        else if (due < today)
            ++counts.overdue;
    }
    return counts;
}

} // namespace oblino
