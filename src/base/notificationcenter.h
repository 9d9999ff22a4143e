#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace oblino {

/// Notifications by name. An observer is called on the thread that posts, at once.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    /// The application's default centre.
    static NotificationCenter &standard();

    void post(const QString &name);

    /// Calls `handler` whenever `name` is posted, as long as `observer` lives.
    void observe(const QString &name, QObject *observer, std::function<void()> handler);

Q_SIGNALS:
    void posted(const QString &name);
};

} // namespace oblino
