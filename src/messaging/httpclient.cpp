#include <messaging/httpclient.h>

#include <messaging/httpline.h>

#include <QCoreApplication>
#include <QSslCertificate>

#include <utility>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

QString validationError(const QUrl &url)
{
    if (url.scheme() != QLatin1String("https") || url.host().isEmpty())
        return tr("Only https addresses are used.");
    return url.userInfo().isEmpty() ? QString() : tr("The address holds credentials.");
}

} // namespace

HttpClient::HttpClient(const QSslConfiguration &tls, const HttpLimits &limits)
    : m_limits(limits)
{
    for (const QSslCertificate &authority : tls.caCertificates())
        m_authorities += authority.toPem();
}

HttpClient::~HttpClient() = default;

HttpAnswer HttpClient::post(const HttpForm &form)
{
    if (const QString reason = validationError(form.url); !reason.isEmpty())
        return {{}, 0, reason};
    std::unique_ptr<HttpLine> line = takeLine();
    HttpAnswer answer = line->post(form, m_hasStopped);
    if (m_hasStopped && !answer.body)
        answer.error = tr("The program is ending.");
    const std::lock_guard lock(m_mutex);
    std::erase(m_busy, line.get());
    m_idle.push_back(std::move(line));
    return answer;
}

void HttpClient::stop()
{
    const std::lock_guard lock(m_mutex);
    m_hasStopped = true;
    for (HttpLine *line : m_busy)
        line->wake();
}

std::unique_ptr<HttpLine> HttpClient::takeLine()
{
    const std::lock_guard lock(m_mutex);
    std::unique_ptr<HttpLine> line;
    if (m_idle.empty()) {
        line = std::make_unique<HttpLine>(m_authorities, m_limits);
    } else {
        line = std::move(m_idle.back());
        m_idle.pop_back();
    }
    m_busy.push_back(line.get());
    return line;
}

} // namespace oblino
