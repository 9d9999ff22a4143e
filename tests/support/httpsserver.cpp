#include <support/httpsserver.h>

#include <QHostAddress>
#include <QRandomGenerator>
#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <openssl/evp.h>
#include <openssl/x509v3.h>

#include <unistd.h>

#include <functional>
#include <memory>

namespace oblino {

namespace {

template<typename Type, void (*release)(Type *)>
using Owned = std::unique_ptr<Type, decltype([](Type *object) { release(object); })>;
using Key = Owned<EVP_PKEY, EVP_PKEY_free>;

template<typename Type, int (*encode)(const Type *, unsigned char **)>
QByteArray encoded(const Type *object)
{
    QByteArray bytes(encode(object, nullptr), '\0');
    auto *end = reinterpret_cast<unsigned char *>(bytes.data());
    encode(object, &end);
    return bytes;
}

// Without an issuer it signs itself.
Certificate made(const char *name, int extension, const QByteArray &value, const Certificate *issuer)
{
    constexpr long day = 24L * 60 * 60;
    const Key key(EVP_EC_gen("P-256"));
    const Owned<X509, X509_free> certificate(X509_new());
    X509_set_version(certificate.get(), X509_VERSION_3);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), day);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *subject = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>(name), -1,
                               -1, 0);
    const Owned<X509_EXTENSION, X509_EXTENSION_free> extended(
        X509V3_EXT_conf_nid(nullptr, nullptr, extension, value.constData()));
    X509_add_ext(certificate.get(), extended.get(), -1);
    const QByteArray keyBytes = encoded<EVP_PKEY, i2d_PrivateKey>(key.get());
    const QByteArray issuersBytes = issuer ? issuer->key.toDer() : keyBytes;
    const auto *start = reinterpret_cast<const unsigned char *>(issuersBytes.constData());
    const Key issuersKey(d2i_AutoPrivateKey(nullptr, &start, issuersBytes.size()));
    X509 *issuing = issuer ? static_cast<X509 *>(issuer->certificate.handle()) : certificate.get();
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(issuing));
    X509_sign(certificate.get(), issuersKey.get(), EVP_sha256());
    return {QSslCertificate(encoded<X509, i2d_X509>(certificate.get()), QSsl::Der),
            QSslKey(keyBytes, QSsl::Ec, QSsl::Der)};
}

// Speaks TLS at once or, as a proxy that leads every name to itself, after CONNECT.
class Listener : public QTcpServer
{
public:
    Listener(const QSslConfiguration &configuration, const std::function<void(QSslSocket *)> &serve)
        : m_configuration(configuration)
        , m_serve(serve)
    {
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSslConfiguration(m_configuration);
        connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QSslSocket::encrypted, socket, [this, socket] { m_serve(socket); });
        connect(socket, &QSslSocket::readyRead, socket, [socket] {
            if (socket->mode() == QSslSocket::UnencryptedMode && socket->peek(1) != "C")
                socket->startServerEncryption();
            else if (socket->mode() == QSslSocket::UnencryptedMode && socket->readAll().endsWith("\r\n\r\n"))
                socket->write("HTTP/1.1 200 OK\r\n\r\n");
        });
        socket->setSocketDescriptor(descriptor);
    }

private:
    const QSslConfiguration m_configuration;
    const std::function<void(QSslSocket *)> m_serve;
};

} // namespace

Certificate Certificate::authority()
{
    return made("an authority of the tests", NID_basic_constraints, "critical,CA:TRUE", nullptr);
}

Certificate Certificate::issue(const QByteArray &names) const
{
    return made("a server of the tests", NID_subject_alt_name, names, this);
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
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate.certificate);
    configuration.setPrivateKey(certificate.key);
    auto *server = new Listener(configuration, [this](QSslSocket *socket) { serve(socket); });
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
    {
        const std::lock_guard lock(m_mutex);
        ++m_connections;
    }
    auto received = std::make_shared<QByteArray>();
    QObject::connect(socket, &QSslSocket::readyRead, socket,
                     [this, socket, received] { read(socket, *received); });
    read(socket, *received);
}

void HttpsServer::read(QSslSocket *socket, QByteArray &received)
{
    received += socket->readAll();
    const qsizetype end = received.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    constexpr qsizetype lineEnds = 4;
    Request request{received.left(end + 2), received.mid(end + lineEnds)};
    if (request.body.size() < request.header("Content-Length").toLongLong())
        return;
    received.clear();
    const std::lock_guard lock(m_mutex);
    m_requests += request;
    socket->write(m_reply.bytes);
    socket->flush();
    conclude(socket);
}

void HttpsServer::conclude(QSslSocket *socket)
{
    constexpr int notifyAfter = 3; // milliseconds
    constexpr int dropWithin = 6;
    const auto notify = [this, socket] {
        m_halfClosed += ::dup(static_cast<int>(socket->socketDescriptor()));
        socket->disconnectFromHost();
    };
    if (m_reply.end == Reply::End::Close)
        socket->disconnectFromHost();
    else if (m_reply.end == Reply::End::CloseNotify)
        QTimer::singleShot(notifyAfter, Qt::PreciseTimer, socket, notify);
    else if (m_reply.end == Reply::End::Drop)
        QTimer::singleShot(QRandomGenerator::global()->bounded(dropWithin), Qt::PreciseTimer, socket,
                           &QSslSocket::abort);
}

} // namespace oblino
