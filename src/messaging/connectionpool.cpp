#include <messaging/connectionpool.h>

#include <messaging/httpconnection.h>

#include <utility>

namespace oblino {

namespace {

constexpr int trials = 16;
constexpr int margin = 10; // of what idle connections have outlived

bool isSameServer(const QUrl &one, const QUrl &other)
{
    return one.host() == other.host() && one.port() == other.port();
}

} // namespace

HttpConnection &ConnectionPool::connectionTo(const QUrl &url)
{
    if (!isSameServer(url, m_server)) {
        settle(Habit::Unknown);
        m_server = url;
        m_outlived = 0;
    }
    while (m_habit == Habit::Keeps && !m_idle.isEmpty()) {
        HttpConnection *idle = m_idle.takeLast();
        if (idle->isQuiet())
            return *idle;
        idle->close();
    }
    return *open(url);
}

HttpConnection *ConnectionPool::open(const QUrl &url)
{
    auto *connection = new HttpConnection(url, m_tls, m_limits, this);
    connect(connection, &HttpConnection::wasIdle, this, [this, connection] {
        m_idle.removeOne(connection);
        connection->close();
        if (m_habit == Habit::Unknown && ++m_outlived == trials)
            settle(Habit::Keeps);
    });
    connect(connection, &HttpConnection::wasDisturbed, this, [this] { settle(Habit::Ends); });
    return connection;
}

void ConnectionPool::takeBack(HttpConnection &connection, bool hasAnswer)
{
    if (!isSameServer(connection.url(), m_server)) {
        connection.close();
        return;
    }
    if (!hasAnswer && connection.isUsedAgain())
        settle(Habit::Ends);
    const bool isOneTooMany = m_habit == Habit::Unknown && m_idle.size() == trials;
    if (!hasAnswer || m_habit == Habit::Ends || isOneTooMany || !connection.isQuiet()) {
        connection.close();
        return;
    }
    m_idle += &connection;
    connection.beIdle(m_habit == Habit::Keeps ? m_limits.trial / margin : m_limits.trial);
}

void ConnectionPool::cut(const QString &reason)
{
    for (auto *connection : findChildren<HttpConnection *>())
        connection->cut(reason);
}

// What is idle was tried under the habit of before.
void ConnectionPool::settle(Habit habit)
{
    m_habit = habit;
    for (HttpConnection *idle : std::exchange(m_idle, {}))
        idle->close();
}

} // namespace oblino
