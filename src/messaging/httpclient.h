#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace oblino {

/// A form to be sent by POST, with the credentials for HTTP Basic authentication.
struct HttpForm
{
    QUrl url; ///< https, and without credentials
    QString user;
    QString password;
    QByteArray body; ///< encoded as application/x-www-form-urlencoded
};

/// What came of a request: a body, or the reason why there is none.
struct HttpAnswer
{
    std::optional<QByteArray> body; ///< the whole body, whatever the status
    int status = 0;                 ///< 0 where none arrived
    QString error;                  ///< empty where there is a body
};

struct HttpLimits
{
    std::chrono::milliseconds silence = std::chrono::seconds(30); ///< during which nothing at all arrives
    std::chrono::milliseconds total = std::chrono::seconds(60);   ///< for one request and its answer
    /// Idle connections must outlive it before any is used again; see ConnectionPool.
    std::chrono::milliseconds trial = std::chrono::seconds(1);
    qsizetype answer = 64 * 1024; ///< bytes in a body
};

/// Sends forms over HTTPS. A request goes out once, whatever happens: it is never repeated and redirects are
/// never followed. Certificates are verified without exception. There are no cookies, no cache and no other
/// credentials than those of the request. Safe to use from any thread.
class HttpClient
{
public:
    /// Told of what came of one request.
    using Handler = std::function<void(const HttpAnswer &answer)>;

    /// @param tls  the certificate authorities to trust, by default those of the system
    explicit HttpClient(const QSslConfiguration &tls = QSslConfiguration::defaultConfiguration(),
                        const HttpLimits &limits = {});
    HttpClient(const HttpClient &) = delete;
    HttpClient &operator=(const HttpClient &) = delete;
    /// Stops first.
    ~HttpClient();

    /// Sends a form and returns at once. The handler is called exactly once, on the client's own thread; a
    /// request that a stop keeps from starting is told of on the thread that stops, and one that comes after
    /// on this one, at once. An answer whose body is longer than the limit is cut off and counts as none.
    void post(HttpForm form, Handler handler);

    /// Ends what is under way, whose handlers are told of an error before this returns, and refuses whatever
    /// comes after. Not to be called by a handler.
    void stop();

private:
    class Service;

    std::unique_ptr<Service> m_service;
};

} // namespace oblino
