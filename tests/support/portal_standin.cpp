// portal_standin <scheme>: the settings portal of a desktop with that colour scheme, 1 for dark, on the
// session bus until it is ended. Says "ready" when it can be asked.
#include <support/privatebus.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    oblino::FakePortal portal(QDBusConnection::sessionBus());
    portal.scheme = QCoreApplication::arguments().value(1).toUInt();
    QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
    if (!bus || !bus->isServiceRegistered(QStringLiteral("org.freedesktop.portal.Desktop")))
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
