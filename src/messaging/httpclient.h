#pragma once

#include <messaging/httpform.h>

#include <QSslConfiguration>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace oblino {

class HttpLine;

/// Sends forms over HTTPS. A request goes out once, whatever happens: it is never repeated and redirects are
/// never followed. Certificates are verified without exception. There are no cookies, no cache and no other
/// credentials than those of the request. Safe to use from any thread.
class HttpClient
{
public:
    /// @param tls  the certificate authorities to trust; those of the system where it names none
    explicit HttpClient(const QSslConfiguration &tls = QSslConfiguration::defaultConfiguration(),
                        const HttpLimits &limits = {});
    HttpClient(const HttpClient &) = delete;
    HttpClient &operator=(const HttpClient &) = delete;
    /// Nothing may be under way.
    ~HttpClient();

    /// Sends a form, and returns when it is answered or can no longer be. An answer whose body is longer than
    /// the limit is cut off and counts as none.
    [[nodiscard]] HttpAnswer post(const HttpForm &form);

    /// Ends what is under way, which then counts as not answered, and refuses whatever comes after.
    void stop();

private:
    [[nodiscard]] std::unique_ptr<HttpLine> takeLine();

    QByteArray m_authorities;
    HttpLimits m_limits;
    std::atomic<bool> m_hasStopped = false;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<HttpLine>> m_idle;
    std::vector<HttpLine *> m_busy;
};

} // namespace oblino
