#include <platform/singleinstance.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QThread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr auto waitForOther = 3s;
constexpr std::chrono::duration<unsigned long, std::milli> betweenAttempts(50);

} // namespace

SingleInstance::SingleInstance(QString privateFolder, QObject *parent)
    : QObject(parent)
    , m_privateFolder(std::move(privateFolder))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::answer);
}

SingleInstance::~SingleInstance()
{
    if (m_lockFile >= 0)
        ::close(m_lockFile);
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
    QLocalServer::removeServer(socketName()); // what a crash left behind
    m_server.listen(socketName());
    return Claim::First;
}

bool SingleInstance::lock()
{
    const QByteArray folder = QFile::encodeName(m_privateFolder);
    if (!QDir(m_privateFolder).exists() && QDir().mkpath(m_privateFolder))
        ::chmod(folder.constData(), 0700);
    if (m_lockFile < 0)
        m_lockFile =
            ::open((folder + "/oblino.lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    return m_lockFile < 0 || ::flock(m_lockFile, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

QString SingleInstance::socketName() const
{
    const QByteArray hash = QCryptographicHash::hash(m_privateFolder.toUtf8(), QCryptographicHash::Sha256);
    return QStringLiteral("oblino-%1-%2").arg(::getuid()).arg(QString::fromLatin1(hash.toHex().first(16)));
}

bool SingleInstance::raiseOther(const QDeadlineTimer &deadline) const
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    return socket.waitForConnected(static_cast<int>(deadline.remainingTime())) &&
           socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
}

void SingleInstance::answer()
{
    while (QLocalSocket *other = m_server.nextPendingConnection()) {
        connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
        other->write("raised\n");
        other->disconnectFromServer();
        Q_EMIT raiseRequested();
    }
}

} // namespace oblino
