#pragma once

#include <QDateTime>
#include <QFile>
#include <QFileSystemWatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <chrono>

namespace oblino {

/// Tells that a file may have changed, come or gone, by whatever program: in place, by a rename over it, by a
/// mount of its folder. It need not exist yet, and nor need its folder. Our own writing is told of too.
class FileWatch : public QObject
{
    Q_OBJECT

public:
    /// @param settle  how long nothing more must happen before changed() is sent
    explicit FileWatch(QString path, std::chrono::milliseconds settle = std::chrono::milliseconds(200),
                       QObject *parent = nullptr);

Q_SIGNALS:
    void changed();

private:
    void watch();
    void settle();

    QString m_path;
    qint64 m_size = -1; // of the file at the last event
    QDateTime m_modified;
    QFileSystemWatcher m_watcher;
    QFile m_mounts;
    QSocketNotifier m_mounting;
    QTimer m_settled;
};

} // namespace oblino
