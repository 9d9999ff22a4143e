#include <support/httpsserver.h>

#include <QFile>
#include <QHostAddress>
#include <QRandomGenerator>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <memory>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

// Speaks TLS at once or, as a proxy that leads every name to itself, after CONNECT.
struct Listener : QTcpServer
{
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSslConfiguration(configuration);
        connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QSslSocket::encrypted, socket, [this, socket] { serve(socket); });
        connect(socket, &QSslSocket::readyRead, socket, [socket] {
            if (socket->mode() == QSslSocket::UnencryptedMode && socket->peek(1) != "C")
                socket->startServerEncryption();
            else if (socket->mode() == QSslSocket::UnencryptedMode && socket->readAll().endsWith("\r\n\r\n"))
                socket->write("HTTP/1.1 200 OK\r\n\r\n");
        });
        socket->setSocketDescriptor(descriptor);
    }

    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    std::function<void(QSslSocket *)> serve;
};

} // namespace

Certificate::Certificate(const QString &names)
{
    const QTemporaryDir folder;
    QFile keyFile(folder.filePath(u"key"_s));
    QFile file(folder.filePath(u"certificate"_s));
    // Not by QProcess: the thread sanitizer loses sight of a thread that calls vfork().
    const QString command =
        u"openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
        "-subj '/CN=a server of the tests' -addext 'subjectAltName=%1' "
        "-keyout '%2' -out '%3' 2>/dev/null"_s.arg(names, keyFile.fileName(), file.fileName());
    if (std::system(command.toLocal8Bit().constData()) != 0 || !keyFile.open(QIODevice::ReadOnly) ||
        !file.open(QIODevice::ReadOnly))
        qFatal("openssl made no certificate");
    certificate = QSslCertificate(file.readAll());
    key = QSslKey(keyFile.readAll(), QSsl::Ec);
}

const Certificate &Certificate::loopback()
{
    static const Certificate made(u"IP:127.0.0.1"_s);
    return made;
}

QSslConfiguration Certificate::trust() const
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates({certificate});
    return configuration;
}

QByteArray Reply::answer(const QByteArray &body, const QByteArray &status, const QByteArray &headers)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" +
           headers + "\r\n" + body;
}

QByteArray Request::header(const QByteArray &name) const
{
    QByteArray values;
    for (const QByteArray &line : head.split('\n')) {
        if (line.toLower().startsWith(name.toLower() + ':'))
            values += line.mid(name.size() + 1).trimmed();
    }
    return values;
}

HttpsServer::HttpsServer(const Certificate &certificate)
{
    auto *server = new Listener;
    server->configuration.setLocalCertificate(certificate.certificate);
    server->configuration.setPrivateKey(certificate.key);
    server->serve = [this](QSslSocket *socket) { serve(socket); };
    QObject::connect(&m_thread, &QThread::finished, server, &QObject::deleteLater);
    server->listen(QHostAddress::LocalHost);
    m_port = server->serverPort();
    server->moveToThread(&m_thread);
    m_thread.start();
}

HttpsServer::~HttpsServer()
{
    m_thread.quit();
    m_thread.wait();
    const std::lock_guard lock(m_mutex); // the thread sanitizer does not see what wait() does
    for (const int descriptor : m_halfClosed)
        ::close(descriptor);
}

void HttpsServer::setReply(const Reply &reply)
{
    const std::lock_guard lock(m_mutex);
    m_reply = reply;
}

void HttpsServer::serve(QSslSocket *socket)
{
    const std::lock_guard lock(m_mutex);
    ++m_connections;
    QObject::connect(socket, &QSslSocket::readyRead, socket,
                     [this, socket, received = QByteArray()]() mutable { read(socket, received); });
}

void HttpsServer::read(QSslSocket *socket, QByteArray &received)
{
    received += socket->readAll();
    const qsizetype end = received.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    const Request request{received.left(end + 2), received.mid(end + 4)};
    if (request.body.size() < request.header("Content-Length").toLongLong())
        return;
    received.clear();
    const std::lock_guard lock(m_mutex);
    m_requests += request;
    socket->write(m_reply.bytes);
    socket->flush();
    const auto notify = [this, socket] {
        m_halfClosed += ::dup(static_cast<int>(socket->socketDescriptor()));
        socket->disconnectFromHost();
    };
    if (m_reply.end == Reply::End::Close)
        socket->disconnectFromHost();
    else if (m_reply.end == Reply::End::CloseNotify)
        QTimer::singleShot(3, Qt::PreciseTimer, socket, notify);
    else if (m_reply.end == Reply::End::Drop)
        QTimer::singleShot(QRandomGenerator::global()->bounded(6), Qt::PreciseTimer, socket,
                           &QSslSocket::abort);
}

} // namespace oblino
