#include <core/task.h>

#include <core/taskmanager.h>
#include <platform/clock.h>
#include <platform/trace.h>

namespace oblino {

DefaultTimes sharedDefaultTimes()
{
    return tskMgr().defaultTimes();
}

QDateTime momentOfMaking()
{
    return now();
}

void appendTrace(QByteArray &line, const task &t)
{
    appendTrace(line, QStringView(t.key));
    line += ' ';
    appendTrace(line, QStringView(t.name));
}

} // namespace oblino
