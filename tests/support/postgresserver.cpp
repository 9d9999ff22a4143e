#include <support/postgresserver.h>
#include <support/unprivileged.h>

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTest>

#include <sys/prctl.h>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace oblino {

namespace {

const QString superuser = u"super"_s;

// Debian keeps the programs of a server out of the search path.
QString programFolder()
{
    QDir versions(u"/usr/lib/postgresql"_s);
    for (const QString &version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Reversed)) {
        const QString folder = versions.filePath(version + u"/bin/"_s);
        if (QFile::exists(folder + u"initdb"_s))
            return folder;
    }
    return {};
}

void require(bool isDone, const QString &what)
{
    if (!isDone)
        throw std::runtime_error(what.toStdString());
}

// As the user whose the server's files are.
void runProgram(const QString &name, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    startUnprivileged(process, name, arguments);
    require(process.waitForFinished() && process.exitCode() == 0,
            name + u": "_s + QString::fromLocal8Bit(process.readAll()));
}

quint16 freePort()
{
    QTcpServer server;
    require(server.listen(QHostAddress::LocalHost), server.errorString());
    return server.serverPort();
}

} // namespace

bool PostgresServer::isInstalled()
{
    return !programFolder().isEmpty();
}

PostgresServer::PostgresServer()
    : m_port(freePort())
{
    makeData();
    start();
    StoreLocation socket = place(u"postgres"_s);
    socket.account.host = m_folder.path();
    socket.account.user = superuser;
    for (const QString &name : {user, stranger})
        runAt(socket, u"CREATE ROLE %1 LOGIN CREATEDB PASSWORD '%2'"_s.arg(
                          name, QString(password).replace(u'\'', u"''"_s)));
}

PostgresServer::~PostgresServer()
{
    stop();
}

void PostgresServer::makeData()
{
    if (::geteuid() == 0)
        require(::chown(QFile::encodeName(m_folder.path()).constData(), nobody, nobody) == 0, u"chown"_s);
    runProgram(programFolder() + u"initdb"_s,
               {u"--auth-host=scram-sha-256"_s, u"--auth-local=trust"_s, u"--username="_s + superuser,
                u"--no-sync"_s, u"--encoding=UTF8"_s, u"--locale=C"_s, m_folder.filePath(u"data"_s)});
    runProgram(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
                              u"ec_paramgen_curve:prime256v1"_s, u"-nodes"_s, u"-days"_s, u"2"_s, u"-subj"_s,
                              u"/CN=localhost"_s, u"-addext"_s, u"subjectAltName=DNS:localhost"_s,
                              u"-keyout"_s, m_folder.filePath(u"tls.key"_s), u"-out"_s, rootCertificate()});
}

void PostgresServer::start()
{
    QStringList arguments = {u"-D"_s, m_folder.filePath(u"data"_s)};
    // Only the server crashes here, never the machine: what it has written is safe without syncing.
    for (const QString &setting :
         {u"listen_addresses=127.0.0.1"_s, u"port=%1"_s.arg(m_port), u"fsync=off"_s, u"autovacuum=off"_s,
          u"shared_buffers=16MB"_s, u"unix_socket_directories="_s + m_folder.path(), u"ssl=on"_s,
          u"ssl_cert_file="_s + rootCertificate(), u"ssl_key_file="_s + m_folder.filePath(u"tls.key"_s)})
        arguments << u"-c"_s << setting;
    m_server.setStandardErrorFile(m_folder.filePath(u"log"_s));
    m_server.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGQUIT); }); // if the test crashes
    startUnprivileged(m_server, programFolder() + u"postgres"_s, arguments);

    const auto isReady = [this] {
        QFile state(m_folder.filePath(u"data/postmaster.pid"_s));
        return state.open(QIODevice::ReadOnly) && state.readAll().contains("\nready");
    };
    require(QTest::qWaitFor(isReady, 30000), u"The server does not start."_s);
}

void PostgresServer::stop()
{
    if (m_server.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(m_server.processId()), SIGQUIT);
    if (!m_server.waitForFinished())
        m_server.kill();
}

StoreLocation PostgresServer::place(const QString &database) const
{
    return {.file = {},
            .account = {.host = u"127.0.0.1"_s,
                        .port = m_port,
                        .database = database,
                        .user = user,
                        .tlsMode = TlsMode::Disable},
            .password = password};
}

StoreLocation PostgresServer::newPlace(const QString &options)
{
    const QString name = u"cloud records %1"_s.arg(++m_databases);
    runAt(place(u"postgres"_s), u"CREATE DATABASE \"%1\" %2"_s.arg(name, options));
    return place(name);
}

} // namespace oblino
