// How records get into the task list.
#include <cloud/taskcloud.h>

#include <cloud/cloudwork.h>
#include <cloud/taskrecord.h>

#include <base/fieldtext.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <core/taskmanager.h>

#include <QHash>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

// A task whose key the file cannot hold goes back to the cloud under the key that the file holds instead,
// which makes a second record of it. That one is the newer and has the last word.
QList<CloudRecord> inMergeOrder(QList<CloudRecord> records)
{
    const qsizetype key = taskRecordType().indexOf(QStringLiteral("key"));
    const auto isOdd = [key](const CloudRecord &record) {
        return !isFieldText(record.value(key).toString());
    };
    if (std::ranges::any_of(std::as_const(records), isOdd))
        std::stable_partition(records.begin(), records.end(), isOdd);
    return records;
}

} // namespace

void TaskCloud::mergeRecords(const QList<CloudRecord> &records, CloudOperation &operation)
{
    // Where each key is, so that not every record searches the list: the last place where several have it.
    QHash<QString, qint64> places;
    places.reserve(m_store.fullList().size() + records.size());
    for (qint64 index = 0; index < m_store.fullList().size(); ++index)
        places.insert(m_store.fullList().at(index).key, index);

    const bool inDark = m_store.inDarkMode();
    const task made; // once: it asks the clock
    const QList<CloudRecord> ordered = inMergeOrder(records);
    for (const CloudRecord &record : ordered) {
        trace("CloudKit record:", record);
        task t = taskOfRecord(record, inDark, made);
        m_store.setSelected(places.value(t.key, -1));
        trace("Selected:", m_store.selected());
        if (m_store.selected() < 0) {
            const QString key = m_store.appendTask(std::move(t));
            places.insert(key, m_store.fullList().size() - 1);
        } else {
            mergeIntoSelected(t);
        }
    }
    m_notifications.post(QStringLiteral("reload"));
    if (operation.succeeded())
        m_store.setLastMessage(QStringLiteral("-iCloud:Update Complete!-"));
    m_notifications.post(QStringLiteral("update"));
}

void TaskCloud::mergeIntoSelected(const task &t)
{
    m_store.editSelectedTask(t);
    if (t.hidden)
        m_store.hideSelected();
    else
        m_store.unhideSelected();
    trace("Selected Task:", [this] { return m_store.getSelectedTask(); });
}

} // namespace oblino
