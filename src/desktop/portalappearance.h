#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class QDBusPendingCall;

namespace oblino {

class Appearance;

/// Keeps an Appearance in step with the desktop's settings portal (`org.freedesktop.appearance`
/// `color-scheme`: 1 prefers dark). Where no portal answers, the lightness of the application palette as it
/// was at the start decides.
class PortalAppearance : public QObject
{
    Q_OBJECT

public:
    /// Asks the portal at once; the answer is waited for only in waitForAnswer().
    PortalAppearance(Appearance &appearance, const QDBusConnection &bus, QObject *parent = nullptr);
    ~PortalAppearance() override;

    /// Waits for the first answer, at most so long.
    void waitForAnswer(std::chrono::milliseconds atMost);

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void takeAnswer();
    void setColorScheme(uint scheme);

    Appearance &m_appearance;
    std::unique_ptr<QDBusPendingCall> m_firstAnswer;
};

} // namespace oblino
