#include <base/notificationcenter.h>

#include <utility>

namespace oblino {

NotificationCenter &NotificationCenter::standard()
{
    static NotificationCenter instance;
    return instance;
}

void NotificationCenter::post(const QString &name)
{
    Q_EMIT posted(name);
}

void NotificationCenter::observe(const QString &name, QObject *observer, std::function<void()> handler)
{
    connect(
        this, &NotificationCenter::posted, observer,
        [name, handler = std::move(handler)](const QString &postedName) {
            if (postedName == name)
                handler();
        },
        Qt::DirectConnection);
}

} // namespace oblino
