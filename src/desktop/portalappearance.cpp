#include <desktop/portalappearance.h>

#include <base/appearance.h>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEventLoop>
#include <QGuiApplication>
#include <QPalette>
#include <QTimer>

namespace oblino {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString colorSchemeKey = QStringLiteral("color-scheme");
constexpr uint prefersDark = 1;

bool paletteIsDark()
{
    return isDark(QGuiApplication::palette().color(QPalette::Window).lightnessF());
}

std::optional<QString> styleText(bool dark)
{
    return dark ? std::optional(QStringLiteral("Dark")) : std::nullopt;
}

// The portal's older call, Read, wraps its answer in one variant more than needed.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

PortalAppearance::PortalAppearance(Appearance &appearance, const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance)
{
    m_appearance.setInterfaceStyle(styleText(paletteIsDark()));
    if (!bus.isConnected())
        return;
    // Connecting looks the slot's types up by name, under which QtDBus enters this one only later.
    qRegisterMetaType<QDBusVariant>();
    QDBusConnection(bus).connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    read << appearanceGroup << colorSchemeKey;
    m_firstAnswer = std::make_unique<QDBusPendingCall>(bus.asyncCall(read));
    auto *watcher = new QDBusPendingCallWatcher(*m_firstAnswer, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &PortalAppearance::takeAnswer);
}

PortalAppearance::~PortalAppearance() = default;

void PortalAppearance::waitForAnswer(std::chrono::milliseconds atMost)
{
    if (!m_firstAnswer || m_firstAnswer->isFinished())
        return takeAnswer();
    QEventLoop loop;
    QDBusPendingCallWatcher watcher(*m_firstAnswer);
    connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(atMost, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    takeAnswer();
}

void PortalAppearance::takeAnswer()
{
    if (!m_firstAnswer || !m_firstAnswer->isFinished())
        return;
    const QDBusPendingReply<QDBusVariant> reply = *m_firstAnswer;
    m_firstAnswer.reset();
    if (reply.isValid())
        setColorScheme(unwrapped(QVariant::fromValue(reply.value())).toUInt());
}

void PortalAppearance::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group != appearanceGroup || key != colorSchemeKey)
        return;
    m_firstAnswer.reset(); // what it says is older
    setColorScheme(unwrapped(value.variant()).toUInt());
}

void PortalAppearance::setColorScheme(uint scheme)
{
    m_appearance.setInterfaceStyle(styleText(scheme == prefersDark));
}

} // namespace oblino
