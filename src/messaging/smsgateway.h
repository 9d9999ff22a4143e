#pragma once

#include <QString>

#include <condition_variable>
#include <mutex>

namespace oblino {

class HttpClient;
class TaskManager;

/// Sends text messages through the REST service with the user's own account, whose settings are read anew for
/// every message. Safe to use from any thread; no message may be under way when the gateway goes.
class SmsGateway
{
public:
    /// @param settings  both outlive the gateway
    SmsGateway(const TaskManager &settings, HttpClient &client,
               const QString &host = QStringLiteral("api.twilio.com"), quint16 port = 443);

    /// Sends one message, and returns when the service has answered, or has not in time, and the configured
    /// pause is over. Where the account's settings do not make an address, nothing is sent, but the pause is
    /// kept. An answer that is judged an error becomes SendingState::lastResponse(), and the reason of any
    /// failure lastFailure().
    /// @return whether it went through
    bool sendSMS(const QString &message, const QString &toNumber);

    /// For the end of the program: ends the message and the pause that are under way, and sends none that
    /// come after, which return false at once. Stops the client too.
    void stop();

private:
    void pause();

    const TaskManager &m_settings;
    HttpClient &m_client;
    QString m_host;
    quint16 m_port;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stops = false;
};

/// The gateway of the application, made on first use on the application's settings. It stops when the
/// application object goes; whoever sends on another thread waits for that thread before main() returns.
[[nodiscard]] SmsGateway &smsGateway();

/// Sends one message through smsGateway().
bool sendSMS(const QString &message, const QString &toNumber);

} // namespace oblino
