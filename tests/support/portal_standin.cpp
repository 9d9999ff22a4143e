// portal_standin <scheme>: the settings portal of a desktop with that colour scheme, 1 for dark, on the
// session bus until it is ended. Says "ready" when it can be asked.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <cstdio>

namespace {

class Portal : public QDBusVirtualObject
{
public:
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const QVariantList asked = {QStringLiteral("org.freedesktop.appearance"),
                                    QStringLiteral("color-scheme")};
        if (message.member() != QLatin1String("Read") || message.arguments() != asked)
            return false;
        // In one variant more than needed, as the portal does.
        const QDBusVariant scheme(QCoreApplication::arguments().value(1).toUInt());
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(scheme)))));
    }
    QString introspect(const QString &) const override { return {}; }
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QDBusConnection bus = QDBusConnection::sessionBus();
    Portal portal;
    if (!bus.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal) ||
        !bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
