#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QThread>

#include <memory>
#include <mutex>

class QSslSocket;

namespace oblino {

/// A certificate of a test's own, which its key has signed.
struct Certificate
{
    /// @param names  as in "DNS:localhost,IP:127.0.0.1"
    explicit Certificate(const QString &names);
    /// That of this machine, made once.
    static const Certificate &loopback();
    /// A configuration that trusts this certificate alone.
    [[nodiscard]] QSslConfiguration trust() const;

    QSslCertificate certificate;
    QSslKey key;
};

/// What a server does with a request: it writes bytes, and then keeps the connection or ends it.
struct Reply
{
    enum class End {
        Keep,
        Close,       ///< at once
        CloseNotify, ///< TLS alone, 3 ms later; TCP stays open, and nobody reads there
        Drop         ///< TCP alone, at random 0 to 5 ms later
    };

    QByteArray bytes;
    End end = End::Keep;

    /// A whole answer.
    static QByteArray answer(const QByteArray &body, const QByteArray &status = "201 Created",
                             const QByteArray &headers = {});
};

struct Request
{
    QByteArray head; ///< the request line and the headers, each with its line end
    QByteArray body;

    [[nodiscard]] QByteArray line() const { return head.left(head.indexOf('\r')); }
    /// The values of a header, one after the other.
    [[nodiscard]] QByteArray header(const QByteArray &name) const;
};

/// An HTTPS server on 127.0.0.1 in a thread of its own, which keeps what it was sent.
/// As a proxy it is every server.
class HttpsServer
{
public:
    explicit HttpsServer(const Certificate &certificate = Certificate::loopback());
    HttpsServer(const HttpsServer &) = delete;
    HttpsServer &operator=(const HttpsServer &) = delete;
    ~HttpsServer();

    [[nodiscard]] quint16 port() const { return m_port; }
    /// From now on every request is answered so.
    void setReply(const Reply &reply);
    /// Every request that arrived whole.
    [[nodiscard]] QList<Request> requests() const { return locked(m_requests); }
    /// Connections that came to speak TLS.
    [[nodiscard]] int connections() const { return locked(m_connections); }

private:
    template<typename Value>
    Value locked(const Value &value) const
    {
        const std::lock_guard lock(m_mutex);
        return value;
    }
    void serve(QSslSocket *socket);
    void read(QSslSocket *socket, QByteArray &received);

    mutable std::mutex m_mutex; // of what follows
    Reply m_reply;
    QList<Request> m_requests;
    int m_connections = 0;
    QList<int> m_halfClosed; // descriptors

    quint16 m_port = 0;
    QThread m_thread;
};

} // namespace oblino
