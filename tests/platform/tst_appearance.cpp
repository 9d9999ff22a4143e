#include <support/privatebus.h>
#include <support/testmain.h>

#include <platform/appearance.h>
#include <platform/portalappearance.h>

#include <QDBusConnectionInterface>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QPalette>
#include <QSignalSpy>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Answer = FakePortal::Answer;

namespace {

constexpr auto longEnough = 20s; // answers come long before

void setPalette(bool dark)
{
    QGuiApplication::setPalette(
        dark ? QPalette(Qt::white, Qt::black, Qt::gray, Qt::gray, Qt::gray, Qt::white, Qt::black)
             : QPalette(Qt::black, Qt::white, Qt::gray, Qt::gray, Qt::gray, Qt::black, Qt::white));
}

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
    void init() { setPalette(false); }
    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus(m_programBus.name());
        QDBusConnection::disconnectFromBus(m_portalBus.name());
    }

    void followsThePortalFromTheStart_data()
    {
        QTest::addColumn<uint>("scheme");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<bool>("dark");
        QTest::newRow("no preference") << 0U << Answer::Nested << false;
        QTest::newRow("prefers dark") << 1U << Answer::Nested << true;
        QTest::newRow("prefers light") << 2U << Answer::Nested << false;
        QTest::newRow("unknown to this day") << 3U << Answer::Nested << false;
        QTest::newRow("prefers dark, in one variant only") << 1U << Answer::Single << true;
    }
    void followsThePortalFromTheStart()
    {
        QFETCH(const uint, scheme);
        QFETCH(const Answer, answer);
        QFETCH(const bool, dark);
        setPalette(!dark);
        FakePortal portal(m_portalBus);
        portal.scheme = scheme;
        portal.answer = answer;
        Appearance appearance;
        PortalAppearance(appearance, m_programBus).settle(longEnough);
        QCOMPARE(isDark(appearance), dark);
        QVERIFY(!appearance.text(u"AppleInterfaceTheme"_s));
    }

    void goesByThePaletteWithoutAnAnswer_data()
    {
        QTest::addColumn<QString>("portal");
        QTest::addColumn<bool>("dark");
        for (const QString &portal : {u"no bus"_s, u"no portal"_s, u"no such setting"_s, u"no answer"_s}) {
            QTest::addRow("%s, dark palette", qPrintable(portal)) << portal << true;
            QTest::addRow("%s, light palette", qPrintable(portal)) << portal << false;
        }
    }
    void goesByThePaletteWithoutAnAnswer()
    {
        QFETCH(const QString, portal);
        QFETCH(const bool, dark);
        setPalette(dark);
        std::unique_ptr<FakePortal> fake;
        if (portal != u"no bus"_s && portal != u"no portal"_s) {
            fake = std::make_unique<FakePortal>(m_portalBus);
            fake->answer = portal == u"no answer"_s ? Answer::Withheld : Answer::Error;
            fake->scheme = dark ? 2 : 1;
        }
        Appearance appearance;
        PortalAppearance follower(appearance,
                                  portal == u"no bus"_s ? QDBusConnection(u"none"_s) : m_programBus);
        const QDeadlineTimer deadline(longEnough / 4);
        follower.settle(portal == u"no answer"_s ? 50ms : longEnough);
        QVERIFY(!deadline.hasExpired());
        QCOMPARE(isDark(appearance), dark);
        if (portal != u"no answer"_s)
            return;
        fake->answer = Answer::Nested;
        fake->reply(fake->request);
        QTRY_COMPARE(isDark(appearance), !dark);
    }

    void tellsEachChangeOnce()
    {
        FakePortal portal(m_portalBus);
        Appearance appearance;
        PortalAppearance follower(appearance, m_programBus);
        follower.settle(longEnough);
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

    void followsAPortalThatStartsLater()
    {
        Appearance appearance;
        PortalAppearance follower(appearance, m_programBus);
        follower.settle(longEnough);
        FakePortal portal(m_portalBus);
        portal.change(1);
        QTRY_VERIFY(isDark(appearance));
    }

    void believesAChangeRatherThanAnOlderAnswer()
    {
        FakePortal portal(m_portalBus);
        portal.answer = Answer::Withheld;
        portal.onRead = [&portal] { portal.change(1); };
        Appearance appearance;
        const PortalAppearance follower(appearance, m_programBus);
        QTRY_VERIFY(isDark(appearance));

        const QSignalSpy changes(&appearance, &Appearance::changed);
        portal.scheme = 0;
        portal.answer = Answer::Nested;
        portal.reply(portal.request);
        // An answer of the bus to either of them comes after all that it has handed on before.
        for (const QDBusConnection &bus : {m_portalBus, m_programBus})
            QVERIFY(bus.interface()->isServiceRegistered(u"org.freedesktop.portal.Desktop"_s));
        QCoreApplication::processEvents();
        QCOMPARE(changes.size(), 0);
    }

private:
    PrivateBus m_bus;
    QDBusConnection m_portalBus = m_bus.connection(u"portal"_s);
    QDBusConnection m_programBus = m_bus.connection(u"program"_s);
};

OBLINO_TEST(tst_appearance, QGuiApplication)

#include "tst_appearance.moc"
