#include <messaging/smsgateway.h>

#include <base/trace.h>
#include <base/utf8.h>
#include <core/taskmanager.h>
#include <messaging/httpclient.h>
#include <messaging/sendingstate.h>
#include <messaging/smsmessage.h>

#include <QCoreApplication>

#include <optional>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("SmsGateway", text);
}

bool fail(const QString &reason)
{
    trace("Error:", reason);
    SendingState::setLastFailure(reason);
    return false;
}

bool judge(const QString &response)
{
    trace("Response:", response);
    if (!isSmsError(response)) {
        trace("---Response Does Not Contain Errors---");
        return true;
    }
    SendingState::setLastResponse(response);
    SendingState::setLastFailure(response);
    trace("---Response Contains Errors---");
    return false;
}

// Whether the message went through.
bool judge(const HttpAnswer &answer)
{
    trace("Finished");
    const std::optional<QString> response = answer.body ? decodedUtf8(*answer.body) : std::nullopt;
    if (response)
        return judge(*response);
    return fail(answer.body ? tr("The answer is not UTF-8 text.") : answer.error);
}

} // namespace

SmsGateway::SmsGateway(const TaskManager &settings, HttpClient &client, const QString &host, quint16 port)
    : m_settings(settings)
    , m_client(client)
    , m_host(host)
    , m_port(port)
{
}

bool SmsGateway::sendSMS(const QString &message, const QString &toNumber)
{
    const QString sid = m_settings.getTwilioSID();
    const QString secret = m_settings.getTwilioSecret();
    SendingState::setLastFailure({});
    const QString from = m_settings.getTwilioSendingPhoneNo();
    const QString to = m_settings.getOverwrite() ? m_settings.getTestPhoneNo() : toNumber;
    const QString text = smsText(message);
    trace("Start Message");
    const std::optional<QUrl> url = smsUrl(m_host, m_port, sid, secret);
    bool success = false;
    if (url) {
        trace("Start Message");
        success = judge(m_client.post({*url, sid, secret, smsForm(from, to, text)}));
    } else {
        fail(tr("The account SID or the secret has a character that no address can carry."));
    }
    pause();
    trace("--- Send SMS Success:", success, "---");
    trace("---Send SMS Finished:", url.has_value(), "---");
    return success;
}

void SmsGateway::stop()
{
    m_client.stop(); // before the pause ends, after which the next message may come at once
    {
        const std::lock_guard lock(m_mutex);
        m_stops = true;
    }
    m_changed.notify_all();
}

void SmsGateway::pause()
{
    const std::chrono::microseconds length = smsPause(m_settings.getDelay());
    if (length.count() == 0) // a wait for nothing takes the system a while, too
        return;
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, length, [this] { return m_stops; });
}

SmsGateway &smsGateway()
{
    static HttpClient client;
    static SmsGateway gateway(tskMgr(), client);
    static const bool stopsWithApplication = [] {
        qAddPostRoutine([] { smsGateway().stop(); });
        return true;
    }();
    Q_UNUSED(stopsWithApplication)
    return gateway;
}

bool sendSMS(const QString &message, const QString &toNumber)
{
    return smsGateway().sendSMS(message, toNumber);
}

} // namespace oblino
