#include <support/privatebus.h>
#include <support/test.h>

#include <base/appearance.h>
#include <desktop/portalappearance.h>

#include <QGuiApplication>
#include <QPalette>

using Answer = FakePortal::Answer;

namespace {

bool isDark(const Appearance &appearance)
{
    return appearance.text(u"AppleInterfaceStyle"_s) == u"Dark"_s;
}

} // namespace

class tst_appearance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(!m_bus.address().isEmpty(), "these tests need dbus-daemon"); }
    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus(m_programBus.name());
        QDBusConnection::disconnectFromBus(m_portalBus.name());
    }

    void tellsEachChangeOnce()
    {
        QGuiApplication::setPalette(QPalette(Qt::white));
        Appearance appearance;
        PortalAppearance follower(appearance, m_programBus);
        follower.waitForAnswer(20s);
        FakePortal portal(m_portalBus); // which starts later than the program
        const QSignalSpy changes(&appearance, &Appearance::changed);
        portal.change(1, u"org.freedesktop.other"_s);
        portal.change(1, u"org.freedesktop.appearance"_s, u"contrast"_s);
        portal.change(2);
        portal.change(0);
        portal.change(1);
        QTRY_VERIFY(isDark(appearance));
        QCOMPARE(changes.size(), 1);
        portal.change(1);
        portal.change(2);
        QTRY_VERIFY(!isDark(appearance));
        QCOMPARE(changes.size(), 2);
    }

private:
    PrivateBus m_bus;
    QDBusConnection m_portalBus = m_bus.connection(u"portal"_s);
    QDBusConnection m_programBus = m_bus.connection(u"program"_s);
};

OBLINO_TEST(tst_appearance, QGuiApplication)

#include "tst_appearance.moc"
