#include <files/filewatch.h>

#include <files/openfile.h>

#include <QFileInfo>
#include <QSet>

#include <utility>

namespace oblino {

namespace {

// The next folder above `path` that is there.
QString nearestFolder(QString path)
{
    do
        path = QFileInfo(path).absolutePath();
    while (!QFileInfo(path).isDir() && path != QLatin1String("/"));
    return path;
}

} // namespace

FileWatch::FileWatch(QString path, std::chrono::milliseconds settle, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_mounts(QStringLiteral("/proc/self/mountinfo")) // polls as exceptional after every change
    , m_mounting(QSocketNotifier::Exception)
{
    m_settled.setSingleShot(true);
    m_settled.setInterval(settle);
    connect(&m_settled, &QTimer::timeout, this, [this] {
        watch();
        Q_EMIT changed();
    });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FileWatch::settle);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FileWatch::settle);
    if (m_mounts.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        m_mounting.setSocket(m_mounts.handle());
        m_mounting.setEnabled(true);
        connect(&m_mounting, &QSocketNotifier::activated, this, &FileWatch::settle);
    }
    watch();
}

// Only the file itself can put the end off: its folders may be busy for ever.
void FileWatch::settle()
{
    const QFileInfo file(m_path);
    const bool isSame = m_size == file.size() && m_modified == file.lastModified();
    m_size = file.size();
    m_modified = file.lastModified();
    if (!isSame || !m_settled.isActive())
        m_settled.start();
}

// A rename replaces what is watched, and links may lead elsewhere by now.
void FileWatch::watch()
{
    const QString file = QFile::decodeName(resolveSymlinks(m_path));
    QSet<QString> wanted;
    for (const QString &path : {m_path, file}) {
        const QString folder = nearestFolder(path);
        wanted += {folder, nearestFolder(folder)}; // a folder does not tell that it was moved away
    }
    if (QFileInfo::exists(file))
        wanted.insert(file);
    if (const QStringList watched = m_watcher.files() + m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
    m_watcher.addPaths(wanted.values());
}

} // namespace oblino
