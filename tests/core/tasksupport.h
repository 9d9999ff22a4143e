#pragma once

#include <support/store.h>
#include <support/test.h>

namespace oblino {

inline QString add(TaskManager &store, const task &t)
{
    return store.addTask(t.key, t.date, t.name, t.desc, t.color, t.due, t.status, t.priority, t.statusName,
                         t.priorityName, t.hidden, t.startHour, t.startMin, t.endHour, t.endMin, t.client,
                         t.teamMember);
}

/// The keys of the tasks in their order, joined.
inline QString keysOf(const QList<task> &tasks)
{
    QString keys;
    for (const task &t : tasks)
        keys += t.key;
    return keys;
}

/// Takes the process into a time zone where the clock is put forward at midnight, so that 10 March 2024 has
/// none, and back at one o'clock, so that 3 November 2024 has two.
inline void moveWhereMidnightsAreOdd()
{
    qputenv("TZ", "STD5DST,M3.2.0/0,M11.1.0/1");
    tzset();
}

} // namespace oblino
