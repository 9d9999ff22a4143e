#include <messaging/httpclient.h>

#include <messaging/connectionpool.h>
#include <messaging/httpconnection.h>

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <mutex>
#include <utility>
#include <vector>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

// The account's answer is judged by its text, so none is asked for in a compressed form.
QByteArray requestOf(const HttpForm &form)
{
    const QByteArray target =
        form.url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    const QByteArray credentials = (form.user + u':' + form.password).toUtf8().toBase64();
    return "POST " + (target.startsWith('/') ? target : '/' + target) +
           " HTTP/1.1\r\nHost: " + form.url.authority(QUrl::FullyEncoded).toUtf8() +
           "\r\nUser-Agent: Oblino\r\nAccept-Encoding: identity\r\nAuthorization: Basic " + credentials +
           "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
           QByteArray::number(form.body.size()) + "\r\n\r\n" + form.body;
}

QString validationError(const QUrl &url)
{
    if (url.scheme() != QLatin1String("https") || url.host().isEmpty())
        return tr("Only https addresses are used.");
    return url.userInfo().isEmpty() ? QString() : tr("The address holds credentials.");
}

void refuse(const HttpClient::Handler &handler, const QString &reason)
{
    HttpAnswer answer;
    answer.error = reason;
    handler(answer);
}

} // namespace

class HttpClient::Service : public QThread
{
public:
    Service(const QSslConfiguration &tls, const HttpLimits &limits)
        : m_tls(tls)
        , m_limits(limits)
        , m_waker(*this)
    {
        m_waker.moveToThread(this);
        start();
    }
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;
    ~Service() override { stop(); }

    void add(HttpForm form, Handler handler);
    void stop();

protected:
    void run() override;

private:
    struct Order
    {
        HttpForm form;
        Handler handler;
    };

    // An event for it means that there are orders waiting.
    class Waker : public QObject
    {
    public:
        explicit Waker(Service &service)
            : m_service(service)
        {
        }
        bool event(QEvent *) override
        {
            m_service.processWaiting();
            return true;
        }

    private:
        Service &m_service;
    };

    void processWaiting();
    void process(const Order &order);
    [[nodiscard]] std::vector<Order> takeWaiting();

    QSslConfiguration m_tls;
    HttpLimits m_limits;
    std::mutex m_mutex;
    std::vector<Order> m_waiting;
    bool m_hasStopped = false;

    // Of the thread
    Waker m_waker;
    ConnectionPool *m_connections = nullptr;
};

void HttpClient::Service::add(HttpForm form, Handler handler)
{
    {
        const std::lock_guard lock(m_mutex);
        if (!m_hasStopped) {
            m_waiting.push_back({std::move(form), std::move(handler)});
            QCoreApplication::postEvent(&m_waker, new QEvent(QEvent::User));
            return;
        }
    }
    refuse(handler, tr("The program is ending."));
}

void HttpClient::Service::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_hasStopped = true;
    }
    quit();
    wait();
    for (const Order &order : takeWaiting())
        refuse(order.handler, tr("The program is ending."));
}

void HttpClient::Service::run()
{
    ConnectionPool connections(m_tls, m_limits);
    m_connections = &connections;
    exec();
    connections.cut(tr("The program is ending."));
}

std::vector<HttpClient::Service::Order> HttpClient::Service::takeWaiting()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_waiting, {});
}

void HttpClient::Service::processWaiting()
{
    for (const Order &order : takeWaiting())
        process(order);
}

void HttpClient::Service::process(const Order &order)
{
    if (const QString reason = validationError(order.form.url); !reason.isEmpty())
        return refuse(order.handler, reason);
    HttpConnection &connection = m_connections->connectionTo(order.form.url);
    connection.exchange(requestOf(order.form),
                        [this, &connection, handler = order.handler](const HttpAnswer &answer) {
                            m_connections->takeBack(connection, answer.body.has_value());
                            handler(answer);
                        });
}

HttpClient::HttpClient(const QSslConfiguration &tls, const HttpLimits &limits)
    : m_service(std::make_unique<Service>(tls, limits))
{
}

HttpClient::~HttpClient() = default;

void HttpClient::post(HttpForm form, Handler handler)
{
    m_service->add(std::move(form), std::move(handler));
}

void HttpClient::stop()
{
    m_service->stop();
}

} // namespace oblino
