#include <core/taskmanager.h>

#include <base/appearance.h>
#include <base/clock.h>
#include <base/trace.h>
#include <core/taskkey.h>
#include <files/defaults.h>

#include <utility>

namespace oblino {

TaskManager::TaskManager(Defaults &userDefaults, Appearance &appearance, QObject *parent)
    : QObject(parent)
    , defaults(userDefaults)
    , m_appearance(appearance)
{
}

TaskManager &tskMgr()
{
    static TaskManager instance(Defaults::standard(), Appearance::standard());
    return instance;
}

QString TaskManager::addTask(const QString &key, const QDateTime &date, const QString &name,
                             const QString &desc, const Color &color, const QDateTime &due, qint64 status,
                             qint64 priority, const QString &statusName, const QString &priorityName,
                             bool hidden, qint64 startHour, qint64 startMin, qint64 endHour, qint64 endMin,
                             const QString &client, const QString &teamMember)
{
    return addTask(makeTask(key, date, name, desc, color, due, status, priority, statusName, priorityName,
                            hidden, startHour, startMin, endHour, endMin, client, teamMember));
}

QString TaskManager::addTask(task t, ChangeKind kind)
{
    QString key = appendTask(std::move(t), kind);
    tellAdded(key);
    return key;
}

QString TaskManager::appendTask(task t, ChangeKind kind)
{
    if (t.key.isEmpty())
        t.key = newUuidText();
    m_defaultTimes = {t.startHour, t.startMin, t.endHour, t.endMin};
    trace("Add Task, hidden:", t.hidden);
    m_list.append(std::move(t), kind);
    return fullList().constLast().key;
}

void TaskManager::editSelectedTask(const QDateTime &date, const QString &name, const QString &desc,
                                   const Color &color, const QDateTime &due, qint64 status, qint64 priority,
                                   const QString &statusName, const QString &priorityName, qint64 startHour,
                                   qint64 startMin, qint64 endHour, qint64 endMin, const QString &client,
                                   const QString &teamMember)
{
    editSelectedTask(makeTask({}, date, name, desc, color, due, status, priority, statusName, priorityName,
                              false, startHour, startMin, endHour, endMin, client, teamMember));
}

void TaskManager::editSelectedTask(const task &t)
{
    m_list.changeSelected(ChangeKind::Edit, [&t](task &edited) {
        task made = t;
        made.key = edited.key;
        made.hidden = edited.hidden;
        edited = std::move(made);
    });
    m_defaultTimes = {t.startHour, t.startMin, t.endHour, t.endMin};
    trace("Edit Task");
}

void TaskManager::changeTasks(ChangeKind kind, const TaskPlaces &places,
                              const std::function<void(task &)> &change)
{
    m_list.change(kind, places, change);
    search();
}

void TaskManager::removeTasks(const TaskPlaces &places)
{
    m_list.remove(places);
    search();
}

void TaskManager::moveTasks(const TaskPlaces &places, qsizetype before)
{
    m_list.move(places, before);
    search();
}

void TaskManager::replay(const TaskStep &step, bool back)
{
    m_list.replay(step, back);
    search();
}

void TaskManager::setFilter(qint64 itemStatus)
{
    m_list.setFilter(itemStatus, today());
    trace("Number if tasks in view:", countInView());
}

} // namespace oblino
