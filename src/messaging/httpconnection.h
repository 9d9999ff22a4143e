#pragma once

#include <messaging/httpanswerreader.h>
#include <messaging/httpclient.h>

#include <QObject>
#include <QSslSocket>
#include <QTimer>

namespace oblino {

/// One TLS connection to a server, on which requests go out one after the other, each once.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    HttpConnection(QUrl url, const QSslConfiguration &tls, const HttpLimits &limits, QObject *parent);

    /// Sends a request, head and body, and calls the handler exactly once. The connection is made for the
    /// first.
    void exchange(const QByteArray &request, HttpClient::Handler handler);
    /// Ends what is under way, if anything is, and tells its handler of that reason.
    void cut(const QString &reason);
    /// Ends the connection, on which nothing is under way, and deletes it later.
    void close();

    [[nodiscard]] const QUrl &url() const { return m_url; }
    /// Whether the server goes on after its last answer, and nothing but that answer has come.
    [[nodiscard]] bool isQuiet() const;
    [[nodiscard]] bool isUsedAgain() const { return m_exchanges > 1; }
    /// Has wasIdle() emitted after that time, unless a request goes out before.
    void beIdle(std::chrono::milliseconds time) { m_idle.start(time); }

Q_SIGNALS:
    void wasIdle();
    /// Something has come from the server, or it has ended the connection, while nothing was under way.
    void wasDisturbed();

private:
    void send();
    void receive();
    void end(QAbstractSocket::SocketError error);
    void tell(const QString &error);
    void leave();

    QUrl m_url;
    QSslSocket m_socket;
    QByteArray m_request;
    HttpClient::Handler m_handler; // while an exchange is under way
    HttpAnswerReader m_reader;
    HttpLimits m_limits;
    QTimer m_idle;
    QTimer m_silence;
    QTimer m_total;
    int m_exchanges = 0;
    bool m_hasEnded = false;
};

} // namespace oblino
