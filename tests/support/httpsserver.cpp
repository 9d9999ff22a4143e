#include <support/httpsserver.h>

#include <QEventLoop>
#include <QHostAddress>
#include <QSslServer>
#include <QSslSocket>
#include <QTimer>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <sys/socket.h>

#include <memory>
#include <utility>

namespace oblino {

namespace {

template<typename Type, void (*release)(Type *)>
using Owned = std::unique_ptr<Type, decltype([](Type *object) { release(object); })>;
using Key = Owned<EVP_PKEY, EVP_PKEY_free>;
using X509Certificate = Owned<X509, X509_free>;

template<typename Write>
QByteArray pem(const Write &write)
{
    const Owned<BIO, BIO_free_all> bio(BIO_new(BIO_s_mem()));
    write(bio.get());
    char *bytes = nullptr;
    const auto size = BIO_get_mem_data(bio.get(), &bytes);
    return {bytes, static_cast<qsizetype>(size)};
}

template<typename Type, typename Read>
Type *fromPem(const QByteArray &text, const Read &read)
{
    const Owned<BIO, BIO_free_all> bio(BIO_new_mem_buf(text.constData(), static_cast<int>(text.size())));
    return read(bio.get(), nullptr, nullptr, nullptr);
}

void extend(X509 *certificate, int kind, const QByteArray &value)
{
    const Owned<X509_EXTENSION, X509_EXTENSION_free> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.constData()));
    X509_add_ext(certificate, extension.get(), -1);
}

X509Certificate blank(const char *name, EVP_PKEY *key)
{
    static long serial = 0;
    constexpr long day = 24L * 60 * 60;
    X509Certificate made(X509_new());
    X509_set_version(made.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made.get()), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), day);
    X509_set_pubkey(made.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made.get()), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char *>(name), -1, -1, 0);
    return made;
}

Certificate finished(const X509Certificate &certificate, const Key &key, X509 *issuer, EVP_PKEY *issuersKey)
{
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(issuer));
    X509_sign(certificate.get(), issuersKey, EVP_sha256());
    const QByteArray keyText = pem(
        [&](BIO *bio) { PEM_write_bio_PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
    return {QSslCertificate(pem([&](BIO *bio) { PEM_write_bio_X509(bio, certificate.get()); })),
            QSslKey(keyText, QSsl::Ec)};
}

void drip(QSslSocket *socket, const QByteArray &drops)
{
    auto *timer = new QTimer(socket);
    QObject::connect(timer, &QTimer::timeout, socket, [socket, timer, rest = drops]() mutable {
        socket->write(rest.left(1));
        rest.remove(0, 1);
        if (rest.isEmpty())
            timer->stop();
    });
    timer->start(std::chrono::milliseconds(20));
}

void reset(QSslSocket *socket)
{
    const linger atOnce = {1, 0};
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket->abort();
}

} // namespace

Certificate Certificate::authority()
{
    const Key key(EVP_EC_gen("P-256"));
    const X509Certificate made = blank("an authority of the tests", key.get());
    extend(made.get(), NID_basic_constraints, "critical,CA:TRUE");
    return finished(made, key, made.get(), key.get());
}

Certificate Certificate::issue(const QByteArray &names) const
{
    const X509Certificate issuer(fromPem<X509>(certificate.toPem(), PEM_read_bio_X509));
    const Key issuersKey(fromPem<EVP_PKEY>(key.toPem(), PEM_read_bio_PrivateKey));
    const Key made(EVP_EC_gen("P-256"));
    const X509Certificate leaf = blank("a server of the tests", made.get());
    extend(leaf.get(), NID_subject_alt_name, names);
    return finished(leaf, made, issuer.get(), issuersKey.get());
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

class HttpsServer::Listener : public QSslServer
{
public:
    explicit Listener(HttpsServer &server)
        : m_server(server)
    {
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        {
            const std::lock_guard lock(m_server.m_mutex);
            ++m_server.m_connections;
        }
        QSslServer::incomingConnection(descriptor);
    }

private:
    HttpsServer &m_server;
};

HttpsServer::HttpsServer(const Certificate &certificate)
{
    std::promise<quint16> promise;
    std::future<quint16> port = promise.get_future();
    m_thread.reset(QThread::create(&HttpsServer::run, this, certificate, std::move(promise)));
    m_thread->start();
    m_port = port.get();
}

HttpsServer::~HttpsServer()
{
    m_thread->quit();
    m_thread->wait();
    const std::lock_guard lock(m_mutex); // the thread sanitizer does not see what wait() does
}

void HttpsServer::run(const Certificate &certificate, std::promise<quint16> port)
{
    Listener listener(*this);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate.certificate);
    configuration.setPrivateKey(certificate.key);
    listener.setSslConfiguration(configuration);
    QObject::connect(&listener, &QTcpServer::pendingConnectionAvailable, &listener, [&] {
        while (auto *socket = qobject_cast<QSslSocket *>(listener.nextPendingConnection()))
            serve(socket);
    });
    listener.listen(QHostAddress::LocalHost);
    port.set_value(listener.serverPort());
    QEventLoop().exec();
}

void HttpsServer::setReply(const Reply &reply)
{
    const std::lock_guard lock(m_mutex);
    m_reply = reply;
}

QList<Request> HttpsServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

int HttpsServer::connections() const
{
    const std::lock_guard lock(m_mutex);
    return m_connections;
}

int HttpsServer::ended() const
{
    const std::lock_guard lock(m_mutex);
    return m_ended;
}

qint64 HttpsServer::written() const
{
    const std::lock_guard lock(m_mutex);
    return m_written;
}

void HttpsServer::serve(QSslSocket *socket)
{
    auto received = std::make_shared<QByteArray>();
    QObject::connect(socket, &QSslSocket::readyRead, socket,
                     [this, socket, received] { read(socket, *received); });
    QObject::connect(socket, &QSslSocket::disconnected, socket, [this, socket] {
        {
            const std::lock_guard lock(m_mutex);
            ++m_ended;
        }
        socket->deleteLater();
    });
    QObject::connect(socket, &QSslSocket::encryptedBytesWritten, socket, [this](qint64 bytes) {
        const std::lock_guard lock(m_mutex);
        m_written += bytes;
    });
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
    reply(socket, request);
}

void HttpsServer::reply(QSslSocket *socket, const Request &request)
{
    Reply reply;
    {
        const std::lock_guard lock(m_mutex);
        m_requests += request;
        m_written = 0;
        reply = m_reply;
    }
    socket->write(reply.bytes);
    if (!reply.drops.isEmpty())
        drip(socket, reply.drops);
    else if (reply.end == Reply::End::Close)
        socket->disconnectFromHost();
    else if (reply.end == Reply::End::Reset)
        reset(socket);
}

} // namespace oblino
