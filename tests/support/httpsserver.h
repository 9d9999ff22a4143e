#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QThread>

#include <future>
#include <memory>
#include <mutex>

class QSslSocket;

namespace oblino {

/// A certificate of a test's own, with its key.
struct Certificate
{
    QSslCertificate certificate;
    QSslKey key;

    /// An authority, signed by itself.
    static Certificate authority();
    /// A server's certificate that this authority has signed.
    /// @param names  as in "DNS:localhost,IP:127.0.0.1"
    [[nodiscard]] Certificate issue(const QByteArray &names) const;
    /// A configuration that trusts this authority alone.
    [[nodiscard]] QSslConfiguration trust() const;
};

/// What a server does with a request: it writes bytes, and then keeps the connection, closes or resets it.
struct Reply
{
    enum class End { Keep, Close, Reset };

    QByteArray bytes;
    End end = End::Keep;
    QByteArray drops = {}; ///< written after the bytes, one every 20 ms

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
class HttpsServer
{
public:
    explicit HttpsServer(const Certificate &certificate);
    HttpsServer(const HttpsServer &) = delete;
    HttpsServer &operator=(const HttpsServer &) = delete;
    ~HttpsServer();

    [[nodiscard]] quint16 port() const { return m_port; }
    /// From now on every request is answered so.
    void setReply(const Reply &reply);
    /// Every request that arrived whole.
    [[nodiscard]] QList<Request> requests() const;
    /// Connections that were accepted, whether or not they came to speak TLS.
    [[nodiscard]] int connections() const;
    /// Connections that ended on either side.
    [[nodiscard]] int ended() const;
    /// Bytes of the last reply that went into the network.
    [[nodiscard]] qint64 written() const;

private:
    class Listener;

    void run(const Certificate &certificate, std::promise<quint16> port);
    void serve(QSslSocket *socket);
    void read(QSslSocket *socket, QByteArray &received);
    void reply(QSslSocket *socket, const Request &request);

    mutable std::mutex m_mutex; // of what follows
    Reply m_reply;
    QList<Request> m_requests;
    int m_connections = 0;
    int m_ended = 0;
    qint64 m_written = 0;

    quint16 m_port = 0;
    std::unique_ptr<QThread> m_thread;
};

} // namespace oblino
