// How records of the cloud get into the task list.
#include <core/taskmanager.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <platform/notificationcenter.h>
#include <platform/trace.h>

#include <QHash>

namespace oblino {

void TaskManager::mergeFromCloud(const QList<CloudRecord> &records, CloudOperation &operation)
{
    // Where each key is, so that not every record searches the list: the last place where several have it.
    QHash<QString, qint64> places;
    places.reserve(fullList().size() + records.size());
    for (qint64 index = 0; index < fullList().size(); ++index)
        places.insert(fullList().at(index).key, index);

    const bool inDark = inDarkMode();
    const task made; // once: it asks the clock
    for (const CloudRecord &record : records) {
        trace("CloudKit record:", record);
        task t = taskOfRecord(record, inDark, made);
        m_selected = places.value(t.key, -1);
        trace("Selected:", m_selected);
        if (m_selected < 0) {
            const QString key = addTask(std::move(t));
            places.insert(key, fullList().size() - 1);
        } else {
            mergeIntoSelected(t);
        }
    }
    m_notifications->post(QStringLiteral("reload"));
    if (operation.flag())
        setLastMessage(QStringLiteral("-iCloud:Update Complete!-"));
    m_notifications->post(QStringLiteral("update"));
}

void TaskManager::mergeIntoSelected(const task &t)
{
    editSelectedTask(t.date, t.name, t.desc, t.color, t.due, t.status, t.priority, t.statusName,
                     t.priorityName, t.startHour, t.startMin, t.endHour, t.endMin, t.client, t.teamMember);
    if (t.hidden)
        hideSelected();
    else
        unhideSelected();
    trace("Selected Task:", [this] { return getSelectedTask(); });
}

} // namespace oblino
