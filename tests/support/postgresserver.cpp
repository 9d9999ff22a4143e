#include <support/postgresserver.h>
#include <support/unprivileged.h>

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTest>
#include <QUuid>

#include <sys/prctl.h>

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace oblino {

namespace {

const QString superuser = u"super"_s;
const RecordPlace itself = {.file = {}, .account = {.database = u"postgres"_s}};

// Debian keeps the programs of a server out of the search path.
QString programFolder()
{
    QDir versions(u"/usr/lib/postgresql"_s);
    for (const QString &version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Reversed)) {
        const QString folder = versions.filePath(version + u"/bin"_s);
        if (QFile::exists(folder + u"/initdb"_s) && QFile::exists(folder + u"/postgres"_s))
            return folder;
    }
    return {};
}

QString program(const QString &name)
{
    return programFolder() + u'/' + name;
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
    : m_folder(folderInMemory(u"postgres"_s))
    , m_port(freePort())
{
    makeData();
    start();
    run(itself, u"CREATE ROLE %1 LOGIN PASSWORD '%2'"_s.arg(user, QString(password).replace(u'\'', u"''"_s)));
}

PostgresServer::~PostgresServer()
{
    stop();
}

void PostgresServer::makeData()
{
    const QString secret = m_folder.filePath(u"password"_s);
    QFile file(secret);
    require(file.open(QIODevice::WriteOnly) && file.write(password.toUtf8()) > 0, file.errorString());
    file.close();
    if (::geteuid() == 0) {
        for (const QString &path : {m_folder.path(), secret})
            require(::chown(QFile::encodeName(path).constData(), nobody, nobody) == 0, path);
    }
    runProgram(program(u"initdb"_s),
               {u"--auth=scram-sha-256"_s, u"--username="_s + superuser, u"--pwfile="_s + secret,
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
    const QString log = m_folder.filePath(u"log"_s);
    m_server.setStandardOutputFile(log, QIODevice::Append);
    m_server.setStandardErrorFile(log, QIODevice::Append);
    m_server.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGQUIT); }); // if the test crashes
    startUnprivileged(m_server, program(u"postgres"_s), arguments);

    const auto isReady = [this] {
        QFile state(m_folder.filePath(u"data/postmaster.pid"_s));
        return m_server.state() == QProcess::NotRunning ||
               (state.open(QIODevice::ReadOnly) && state.readAll().contains("\nready"));
    };
    QFile said(log);
    require(QTest::qWaitFor(isReady, 30000) && m_server.state() == QProcess::Running,
            said.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(said.readAll()) : said.errorString());
}

void PostgresServer::stop()
{
    if (m_server.state() == QProcess::NotRunning)
        return;
    resume();
    ::kill(static_cast<pid_t>(m_server.processId()), SIGQUIT);
    if (!m_server.waitForFinished())
        m_server.kill();
}

RecordPlace PostgresServer::newPlace(const QString &options)
{
    const QString name = u"cloud records %1"_s.arg(++m_databases);
    run(itself, u"CREATE DATABASE %1 OWNER %2 %3"_s.arg(quotedName(name), user, options));
    return {.file = {},
            .account = {.host = u"127.0.0.1"_s,
                        .port = m_port,
                        .database = name,
                        .user = user,
                        .tlsMode = TlsMode::Disable},
            .password = password};
}

SecondConnection PostgresServer::connectTo(const RecordPlace &place)
{
    QSqlDatabase server = QSqlDatabase::addDatabase(u"QPSQL"_s, QUuid::createUuid().toString());
    server.setHostName(m_folder.path()); // where the socket is
    server.setPort(m_port);
    server.setDatabaseName(place.account.database);
    server.setUserName(superuser);
    server.setPassword(password);
    return SecondConnection(server);
}

// Each of a server's processes is the leader of a group of its own.
void PostgresServer::signal(int number)
{
    const qint64 server = m_server.processId();
    QFile children(u"/proc/%1/task/%1/children"_s.arg(server));
    require(server > 0 && children.open(QIODevice::ReadOnly), u"The server does not run."_s);
    ::kill(static_cast<pid_t>(server), number);
    for (const QByteArray &child : children.readAll().split(' ')) {
        if (const pid_t process = child.toInt(); process > 0)
            ::kill(process, number);
    }
}

} // namespace oblino
