#include <platform/httpclient.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

// Qt sends a request again by itself when the server closes the connection without an answer, unless it
// cannot rewind the body.
class BodyReadOnce : public QIODevice
{
public:
    explicit BodyReadOnce(QByteArray body)
        : m_body(std::move(body))
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return m_body.size() - m_read; }
    [[nodiscard]] bool atEnd() const override { return bytesAvailable() == 0; }
    bool reset() override { return false; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const qint64 taken = std::min(size, bytesAvailable());
        if (taken == 0)
            return size == 0 ? 0 : -1;
        std::memcpy(data, m_body.constData() + m_read, static_cast<size_t>(taken));
        m_read += taken;
        return taken;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_body;
    qint64 m_read = 0;
};

QNetworkRequest requestFor(const HttpForm &form, const QSslConfiguration &tls, const HttpLimits &limits)
{
    QNetworkRequest request(form.url);
    request.setSslConfiguration(tls);
    request.setTransferTimeout(static_cast<int>(limits.silence.count()));
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QByteArrayLiteral("application/x-www-form-urlencoded"));
    request.setHeader(QNetworkRequest::ContentLengthHeader, form.body.size());
    request.setRawHeader("Authorization", "Basic " + (form.user + u':' + form.password).toUtf8().toBase64());
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // would send the body again
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    return request;
}

QString whyNot(const QUrl &url)
{
    if (url.scheme() != QLatin1String("https") || url.host().isEmpty())
        return tr("Only https addresses are used.");
    return url.userInfo().isEmpty() ? QString() : tr("The address holds credentials.");
}

// Qt counts statuses from 400 on as errors too, each under a code of its own.
bool isWhole(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::NoError:
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::AuthenticationRequiredError:
    case QNetworkReply::ContentConflictError:
    case QNetworkReply::ContentGoneError:
    case QNetworkReply::UnknownContentError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::InternalServerError:
    case QNetworkReply::OperationNotImplementedError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::UnknownServerError:
        return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    default:
        return false;
    }
}

QString failure(const QNetworkReply &reply)
{
    if (reply.error() == QNetworkReply::OperationCanceledError)
        return tr("The server did not answer in time.");
    if (reply.error() == QNetworkReply::ContentReSendError)
        return tr("The server asked for the message a second time, or closed the connection.");
    return reply.errorString();
}

// One request and its answer. It deletes itself once the handler has been told.
class Exchange : public QObject
{
public:
    Exchange(const QByteArray &body, HttpClient::Handler handler, QObject *parent)
        : QObject(parent)
        , m_body(body)
        , m_handler(std::move(handler))
    {
    }

    void start(QNetworkAccessManager &manager, const QNetworkRequest &request, const HttpLimits &limits)
    {
        m_limit = limits.answer;
        m_reply.reset(manager.post(request, &m_body));
        m_reply->setReadBufferSize(m_limit + 1);
        connect(m_reply.get(), &QNetworkReply::readyRead, this, [this] {
            if (!take())
                cut(tr("The answer is too long."));
        });
        connect(m_reply.get(), &QNetworkReply::finished, this, &Exchange::conclude);
        m_deadline.setSingleShot(true);
        connect(&m_deadline, &QTimer::timeout, this, [this] { cut(tr("The answer took too long.")); });
        m_deadline.start(limits.total);
    }

    void cut(const QString &reason)
    {
        if (!m_handler)
            return;
        m_error = reason;
        m_reply->abort();
        conclude();
    }

private:
    // Takes what has arrived; false where it is too much.
    bool take()
    {
        if (m_reply->isOpen()) // not after a time-out
            m_answer += m_reply->read(m_limit + 1 - m_answer.size());
        return m_answer.size() <= m_limit;
    }

    void conclude()
    {
        if (!m_handler)
            return;
        if (m_error.isEmpty() && !take())
            m_error = tr("The answer is too long.");
        if (m_error.isEmpty() && !isWhole(*m_reply))
            m_error = failure(*m_reply);
        HttpAnswer answer;
        answer.status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer.error = m_error;
        if (m_error.isEmpty())
            answer.body = m_answer;
        m_deadline.stop();
        std::exchange(m_handler, nullptr)(answer);
        deleteLater();
    }

    BodyReadOnce m_body;
    HttpClient::Handler m_handler; // none once it has been told
    std::unique_ptr<QNetworkReply> m_reply;
    QTimer m_deadline;
    qsizetype m_limit = 0;
    QByteArray m_answer;
    QString m_error;
};

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
            m_service.carryOutWaiting();
            return true;
        }

    private:
        Service &m_service;
    };

    void carryOutWaiting();
    void carryOut(const Order &order);
    [[nodiscard]] std::vector<Order> takeWaiting();

    QSslConfiguration m_tls;
    HttpLimits m_limits;
    std::mutex m_mutex;
    std::vector<Order> m_waiting;
    bool m_hasStopped = false;

    // Of the thread
    Waker m_waker;
    QNetworkAccessManager *m_manager = nullptr;
    QObject *m_exchanges = nullptr; // their parent
    QElapsedTimer m_lastUse;
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
    QNetworkAccessManager manager;
    QObject exchanges;
    m_manager = &manager;
    m_exchanges = &exchanges;
    exec();
    const QObjectList underWay = exchanges.children();
    for (QObject *exchange : underWay)
        static_cast<Exchange *>(exchange)->cut(tr("The program is ending."));
}

std::vector<HttpClient::Service::Order> HttpClient::Service::takeWaiting()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_waiting, {});
}

void HttpClient::Service::carryOutWaiting()
{
    for (const Order &order : takeWaiting())
        carryOut(order);
}

void HttpClient::Service::carryOut(const Order &order)
{
    if (const QString reason = whyNot(order.form.url); !reason.isEmpty())
        return refuse(order.handler, reason);
    // The server may close an idle connection just as it is used again, and then the request is lost.
    if (m_lastUse.isValid() && m_lastUse.hasExpired(m_limits.idle.count()) &&
        m_exchanges->children().isEmpty())
        m_manager->clearConnectionCache();
    const auto told = [this, handler = order.handler](const HttpAnswer &answer) {
        m_lastUse.start();
        handler(answer);
    };
    (new Exchange(order.form.body, told, m_exchanges))
        ->start(*m_manager, requestFor(order.form, m_tls, m_limits), m_limits);
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
