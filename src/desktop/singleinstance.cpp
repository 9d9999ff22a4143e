#include <desktop/singleinstance.h>

#include <files/privatefiles.h>
#include <files/sha256.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr auto waitForOther = 3s;
constexpr std::chrono::duration<unsigned long, std::milli> betweenAttempts(50);

constexpr mode_t anyAccess = 0077;
constexpr mode_t writeAccess = 0022;

// Whether the folder is this user's, and others have no such access to it.
bool isOwn(const QString &folder, mode_t accessOfOthers)
{
    struct stat status = {};
    return QDir::isAbsolutePath(folder) && ::stat(QFile::encodeName(folder).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() && (status.st_mode & accessOfOthers) == 0;
}

// The address of a socket has room for 107 bytes, of which a server needs some for a folder of its own. A
// longer path is shortened by way of its folder, which is opened and must stay open.
QString shortened(const QString &path, int &folder)
{
    constexpr qsizetype certainlyFits = 80; // bytes
    if (QFile::encodeName(path).size() <= certainlyFits)
        return path;
    const QFileInfo file(path);
    folder = ::open(QFile::encodeName(file.path()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return QStringLiteral("/proc/self/fd/%1/%2").arg(folder).arg(file.fileName());
}

void closeIfOpen(int &descriptor)
{
    if (descriptor >= 0)
        ::close(std::exchange(descriptor, -1));
}

bool isAnswered(const QString &path, const QDeadlineTimer &deadline)
{
    int folder = -1;
    QLocalSocket socket;
    socket.connectToServer(shortened(path, folder));
    const bool answered = socket.waitForConnected(static_cast<int>(deadline.remainingTime())) &&
                          socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    closeIfOpen(folder);
    return answered;
}

} // namespace

SingleInstance::SingleInstance(QString privateFolder, QObject *parent)
    : QObject(parent)
    , m_privateFolder(std::move(privateFolder))
    , m_server(std::make_unique<QLocalServer>())
{
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, &SingleInstance::answer);
}

SingleInstance::~SingleInstance()
{
    m_server->close();
    closeIfOpen(m_socketFolder);
    closeIfOpen(m_lockFile);
}

SingleInstance::Claim SingleInstance::claim()
{
    // The other one may not listen yet, or be about to end.
    for (const QDeadlineTimer deadline(waitForOther); !lock(); QThread::msleep(betweenAttempts.count())) {
        if (raiseOther(deadline))
            return Claim::RaisedOther;
        if (deadline.hasExpired())
            return Claim::OtherSilent;
    }
    listen();
    return Claim::First;
}

bool SingleInstance::lock()
{
    const QByteArray folder = QFile::encodeName(m_privateFolder);
    static_cast<void>(makePrivateFolder(m_privateFolder)); // without it, no lock can be had
    if (m_lockFile < 0)
        m_lockFile =
            ::open((folder + "/oblino.lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    return m_lockFile < 0 || ::flock(m_lockFile, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void SingleInstance::listen()
{
    const QStringList paths = socketPaths();
    const auto path = std::ranges::find_if(paths, [this](const QString &p) { return listenAt(p); });
    record(path == paths.cend() ? QString() : *path);
}

bool SingleInstance::listenAt(const QString &path)
{
    closeIfOpen(m_socketFolder);
    const QString name = shortened(path, m_socketFolder);
    QLocalServer::removeServer(name); // what a crash left behind
    return m_server->listen(name);
}

QStringList SingleInstance::socketPaths() const
{
    // The runtime folder is that of every home.
    const QByteArray hash = sha256(m_privateFolder.toUtf8());
    const QString name = QStringLiteral("/oblino-") + QString::fromLatin1(hash.toHex().first(16));
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QStringList paths;
    if (isOwn(runtimeFolder, anyAccess))
        paths += runtimeFolder + name;
    if (isOwn(m_privateFolder, writeAccess))
        paths += m_privateFolder + name;
    return paths;
}

QString SingleInstance::recordedPath() const
{
    std::array<char, PATH_MAX> path;
    const ssize_t size = ::pread(m_lockFile, path.data(), path.size(), 0);
    return QFile::decodeName(QByteArray(path.data(), std::max<ssize_t>(size, 0)));
}

void SingleInstance::record(const QString &path) const
{
    const QByteArray bytes = QFile::encodeName(path);
    const bool isCut = ::ftruncate(m_lockFile, 0) == 0;
    if (!isCut || ::pwrite(m_lockFile, bytes.constData(), static_cast<size_t>(bytes.size()), 0) < 0)
        return; // later starts try the usual places
}

bool SingleInstance::raiseOther(const QDeadlineTimer &deadline) const
{
    QStringList paths = socketPaths();
    if (const QString recorded = recordedPath(); QDir::isAbsolutePath(recorded))
        paths.prepend(recorded); // that process may have another environment
    paths.removeDuplicates();
    return std::ranges::any_of(paths, [&](const QString &path) { return isAnswered(path, deadline); });
}

void SingleInstance::answer()
{
    while (QLocalSocket *other = m_server->nextPendingConnection()) {
        connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
        other->write("raised\n");
        other->disconnectFromServer();
        Q_EMIT raiseRequested();
    }
}

} // namespace oblino
