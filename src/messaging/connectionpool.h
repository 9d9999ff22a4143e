#pragma once

#include <messaging/httpclient.h>

#include <QList>
#include <QObject>

namespace oblino {

class HttpConnection;

/// The connections of a client. A server may end an idle connection just as the next request leaves, and such
/// a request is lost, since none is sent twice. So every request has a connection of its own until 16 idle
/// ones have outlived HttpLimits::trial; from then on a connection is used again within a tenth of that time
/// after its last answer. Once the server ends an idle connection sooner, none is ever used again.
class ConnectionPool : public QObject
{
public:
    ConnectionPool(const QSslConfiguration &tls, const HttpLimits &limits)
        : m_tls(tls)
        , m_limits(limits)
    {
    }

    /// A connection for one request to that server.
    [[nodiscard]] HttpConnection &connectionTo(const QUrl &url);
    /// Takes the connection back after a request, with whether that was answered.
    void takeBack(HttpConnection &connection, bool hasAnswer);
    /// Ends everything that is under way.
    void cut(const QString &reason);

private:
    enum class Habit { Unknown, Keeps, Ends };

    HttpConnection *open(const QUrl &url);
    void settle(Habit habit);

    QSslConfiguration m_tls;
    HttpLimits m_limits;
    QUrl m_server; // of which the habit is
    Habit m_habit = Habit::Unknown;
    int m_outlived = 0;
    QList<HttpConnection *> m_idle; // children
};

} // namespace oblino
