#include <core/task.h>

#include <base/clock.h>
#include <base/trace.h>
#include <core/taskmanager.h>

namespace oblino {

DefaultTimes sharedDefaultTimes()
{
    return tskMgr().defaultTimes();
}

QDateTime creationTime()
{
    return now();
}

task makeTask(const QString &key, const QDateTime &date, const QString &name, const QString &desc,
              const Color &color, const QDateTime &due, qint64 status, qint64 priority,
              const QString &statusName, const QString &priorityName, bool hidden, qint64 startHour,
              qint64 startMin, qint64 endHour, qint64 endMin, const QString &client,
              const QString &teamMember)
{
    return {.key = key,
            .date = date,
            .name = name,
            .desc = desc,
            .client = client,
            .teamMember = teamMember,
            .color = color,
            .due = due,
            .status = status,
            .priority = priority,
            .statusName = statusName,
            .priorityName = priorityName,
            .hidden = hidden,
            .startHour = startHour,
            .startMin = startMin,
            .endHour = endHour,
            .endMin = endMin};
}

void closeTask(task &t)
{
    t.status = ClosedStatus;
    t.statusName = QStringLiteral("Closed");
}

void reopenTask(task &t)
{
    t.status = OpenStatus;
    t.statusName = QStringLiteral("Open");
}

void appendTrace(QByteArray &line, const task &t)
{
    appendTrace(line, QStringView(t.key));
    line += ' ';
    appendTrace(line, QStringView(t.name));
}

} // namespace oblino
