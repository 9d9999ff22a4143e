// The cloud copy under the store's own names.
#include <core/taskmanager.h>

#include <base/trace.h>

#include <utility>

namespace oblino {

bool TaskManager::addTaskToCloud(const QString &key, const QDateTime &date, const QString &name,
                                 const QString &desc, const Color &color, const QDateTime &due, qint64 status,
                                 qint64 priority, const QString &statusName, const QString &priorityName,
                                 bool hidden, qint64 startHour, qint64 startMin, qint64 endHour,
                                 qint64 endMin, const QString &client, const QString &teamMember)
{
    return m_cloud && m_cloud->addTask(makeTask(key, date, name, desc, color, due, status, priority,
                                                statusName, priorityName, hidden, startHour, startMin,
                                                endHour, endMin, client, teamMember));
}

bool TaskManager::editTaskToCloud(const QString &key, const QDateTime &date, const QString &name,
                                  const QString &desc, const Color &color, const QDateTime &due,
                                  qint64 status, qint64 priority, const QString &statusName,
                                  const QString &priorityName, bool hidden, qint64 startHour, qint64 startMin,
                                  qint64 endHour, qint64 endMin, const QString &client,
                                  const QString &teamMember)
{
    return m_cloud && m_cloud->editTask(makeTask(key, date, name, desc, color, due, status, priority,
                                                 statusName, priorityName, hidden, startHour, startMin,
                                                 endHour, endMin, client, teamMember));
}

bool TaskManager::deleteTaskToCloud(const QString &key)
{
    return m_cloud && m_cloud->deleteTask(key);
}

void TaskManager::restoreTaskToCloud(const task &t)
{
    if (m_cloud)
        m_cloud->restoreTask(t);
}

bool TaskManager::deleteAllTasksToCloud()
{
    return m_cloud && m_cloud->deleteAll();
}

bool TaskManager::syncToCloudFromLocal()
{
    trace("Sync To CloudKit, #Tasks:", tasks().size());
    if (!m_cloud)
        return tasks().isEmpty();
    const QList<task> sent = tasks(); // the list may change while the answers are waited for
    return m_cloud->send(sent);
}

bool TaskManager::syncToLocalFromCloud()
{
    return m_cloud && m_cloud->merge();
}

void TaskManager::createSharingZone(CloudOperations::ZoneHandler completionHandler)
{
    if (m_cloud)
        m_cloud->createSharingZone(std::move(completionHandler));
}

void TaskManager::discoverUsersUsingApp(const QString &phone)
{
    if (m_cloud)
        m_cloud->discoverUser(phone);
}

} // namespace oblino
