#pragma once

#include <support/cloudrequests.h>
#include <support/scriptedcontainer.h>
#include <support/test.h>

#include <base/appearance.h>
#include <base/notificationcenter.h>
#include <cloud/taskcloud.h>
#include <cloud/taskrecord.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <records/sqlcloudcontainer.h>

namespace oblino {

/// A task store with a cloud of its own in a real file, and what it has told.
class Cloud
{
public:
    explicit Cloud(std::chrono::milliseconds timeout = std::chrono::seconds(30))
        : copy(store, container, notifications, timeout)
    {
        for (const char *name : {"reload", "update"})
            notifications.observe(QLatin1String(name), &notifications, [this, name] { told += name; });
        store.setCloud(&copy);
    }

    /// All records, in the order of the service.
    [[nodiscard]] QList<CloudRecord> records()
    {
        return std::get<0>(find(service, RecordPredicate::all(), taskRecordType()));
    }

    void put(const QList<task> &tasks)
    {
        for (const task &t : tasks)
            QCOMPARE(save(service, newTaskRecord(t, false)), QString());
    }

    /// The values of one field of all records, joined by blanks.
    [[nodiscard]] QString field(const char *key)
    {
        QStringList values;
        for (const CloudRecord &record : records())
            values += record.value(QLatin1String(key)).toString();
        return values.join(QLatin1Char(' '));
    }

    TemporaryHome home;
    Defaults settings{home.path(QStringLiteral("settings.ini"))};
    Appearance appearance;
    NotificationCenter notifications;
    QByteArrayList told;
    TaskManager store{settings, appearance};
    TaskCloud copy;
    ScriptedContainer container{service}; // goes after the thread of the service
    const StoreLocation place{home.path(QStringLiteral("Cloud.sqlite"))};
    SqlCloudContainer service{place, {&taskRecordType()}};
};

} // namespace oblino
