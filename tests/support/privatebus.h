#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryFile>

#include <sys/prctl.h>

#include <csignal>

namespace oblino {

/// A message bus of a test's own, on which no service starts by itself.
class PrivateBus
{
public:
    PrivateBus()
    {
        if (!m_configuration.open())
            return;
        m_configuration.write(
            "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
            "<policy context='default'><allow send_destination='*'/><allow receive_sender='*'/>"
            "<allow own='*'/></policy>"
            "</busconfig>");
        m_configuration.close();
        m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }); // if the test crashes
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--config-file=") + m_configuration.fileName(),
                        QStringLiteral("--print-address"), QStringLiteral("--nofork")});
        while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead()) {
        }
        m_address = QString::fromLocal8Bit(m_daemon.readLine()).trimmed();
    }
    ~PrivateBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// Empty where the bus could not be started.
    [[nodiscard]] QString address() const { return m_address; }
    [[nodiscard]] QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(m_address, name);
    }

private:
    QTemporaryFile m_configuration;
    QProcess m_daemon;
    QString m_address;
};

/// The desktop's settings portal, as far as the colour scheme goes.
class FakePortal : public QDBusVirtualObject
{
public:
    enum class Answer { Given, Error, Withheld };

    explicit FakePortal(const QDBusConnection &connection)
        : bus(connection)
    {
        bus.registerVirtualObject(path, this);
        bus.registerService(service);
    }
    ~FakePortal() override
    {
        bus.unregisterService(service);
        bus.unregisterObject(path);
    }

    /// Says that the setting has changed.
    void change(uint newScheme, const QString &group = QStringLiteral("org.freedesktop.appearance"),
                const QString &key = QStringLiteral("color-scheme"))
    {
        scheme = newScheme;
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, QStringLiteral("SettingChanged"));
        bus.send(signal << group << key << QVariant::fromValue(QDBusVariant(newScheme)));
    }

    void reply(const QDBusMessage &read)
    {
        // In one variant more than needed, as the portal does.
        const QVariant given = QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(scheme))));
        bus.send(answer == Answer::Error ? read.createErrorReply(QDBusError::UnknownProperty, {})
                                         : read.createReply(given));
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        const QVariantList appearance = {QStringLiteral("org.freedesktop.appearance"),
                                         QStringLiteral("color-scheme")};
        if (message.member() != QLatin1String("Read") || message.arguments() != appearance)
            return false;
        request = message;
        if (answer != Answer::Withheld)
            reply(message);
        return true;
    }
    QString introspect(const QString &) const override { return {}; }

    Answer answer = Answer::Given;
    uint scheme = 0;
    QDBusMessage request; ///< the last one

private:
    const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
    QDBusConnection bus;
};

} // namespace oblino
