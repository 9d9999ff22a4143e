#include <messaging/httpconnection.h>

#include <QCoreApplication>
#include <QUrl>

#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace oblino {

namespace {

constexpr quint16 httpsPort = 443;

QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

QString failureOf(HttpAnswerReader::State state)
{
    switch (state) {
    case HttpAnswerReader::State::Whole:
        return {};
    case HttpAnswerReader::State::TooLong:
        return tr("The answer is too long.");
    default:
        return tr("The server closed the connection without a whole answer.");
    }
}

} // namespace

HttpConnection::HttpConnection(QUrl url, const QSslConfiguration &tls, const HttpLimits &limits,
                               QObject *parent)
    : QObject(parent)
    , m_url(std::move(url))
    , m_reader(limits.answer)
    , m_limits(limits)
{
    for (QTimer *timer : {&m_idle, &m_silence, &m_total})
        timer->setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, &HttpConnection::wasIdle);
    connect(&m_silence, &QTimer::timeout, this, [this] { cut(tr("The server did not answer in time.")); });
    connect(&m_total, &QTimer::timeout, this, [this] { cut(tr("The answer took too long.")); });
    connect(&m_socket, &QSslSocket::encrypted, this, &HttpConnection::send);
    connect(&m_socket, &QSslSocket::readyRead, this, &HttpConnection::receive);
    connect(&m_socket, &QSslSocket::errorOccurred, this, &HttpConnection::end);
    connect(&m_socket, &QSslSocket::disconnected, this,
            [this] { end(QAbstractSocket::RemoteHostClosedError); });
    m_socket.setSslConfiguration(tls);
    m_socket.setReadBufferSize(m_limits.answer);
}

void HttpConnection::exchange(const QByteArray &request, HttpClient::Handler handler)
{
    m_idle.stop();
    m_request = request;
    m_handler = std::move(handler);
    m_reader = HttpAnswerReader(m_limits.answer);
    m_silence.start(m_limits.silence);
    m_total.start(m_limits.total);
    if (++m_exchanges > 1)
        send();
    else
        m_socket.connectToHostEncrypted(m_url.host(), static_cast<quint16>(m_url.port(httpsPort)));
}

void HttpConnection::cut(const QString &reason)
{
    if (!m_handler)
        return;
    m_socket.disconnect(this);
    m_socket.abort();
    m_hasEnded = true;
    tell(reason);
}

void HttpConnection::close()
{
    m_idle.stop();
    m_socket.disconnect(this);
    // Not at once: it may be the socket that is calling.
    QMetaObject::invokeMethod(this, &HttpConnection::leave, Qt::QueuedConnection);
}

void HttpConnection::leave()
{
    if (!m_hasEnded)
        m_socket.disconnectFromHost();
    deleteLater();
}

bool HttpConnection::isQuiet() const
{
    if (m_hasEnded || !m_reader.keepsConnection() || m_socket.bytesAvailable() > 0)
        return false;
    char byte = 0; // of what the event loop has not come to yet
    const auto waiting =
        ::recv(static_cast<int>(m_socket.socketDescriptor()), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return waiting < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

void HttpConnection::send()
{
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_socket.write(std::exchange(m_request, {}));
}

void HttpConnection::receive()
{
    if (!m_handler) {
        Q_EMIT wasDisturbed();
        return;
    }
    m_silence.start();
    if (const auto state = m_reader.add(m_socket.readAll()); state != HttpAnswerReader::State::Reading)
        tell(failureOf(state));
}

void HttpConnection::end(QAbstractSocket::SocketError error)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    if (!m_handler) {
        Q_EMIT wasDisturbed();
        return;
    }
    const bool isEnd = error == QAbstractSocket::RemoteHostClosedError;
    m_reader.add(m_socket.readAll());
    tell(isEnd ? failureOf(m_reader.end()) : m_socket.errorString());
}

void HttpConnection::tell(const QString &error)
{
    m_silence.stop();
    m_total.stop();
    HttpAnswer answer;
    answer.status = m_reader.status();
    answer.error = error;
    if (error.isEmpty())
        answer.body = m_reader.body();
    std::exchange(m_handler, nullptr)(answer);
}

} // namespace oblino
