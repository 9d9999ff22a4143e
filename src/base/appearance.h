#pragma once

#include <QMutex>
#include <QObject>
#include <QString>

#include <optional>

namespace oblino {

/// Whether light text is read on a window of that lightness (0..1), and dark text is not.
[[nodiscard]] constexpr bool isDark(float lightness)
{
    return lightness < 0.5F;
}

/// The user's global appearance setting: the text under "AppleInterfaceStyle", which is "Dark" while the
/// dark appearance is on and absent otherwise. It holds what a source such as PortalAppearance tells it.
/// Reading is safe from any thread.
class Appearance : public QObject
{
    Q_OBJECT

public:
    explicit Appearance(QObject *parent = nullptr);

    /// The appearance of this user's desktop.
    static Appearance &standard();

    /// The text stored under a key of the global defaults; none for a key that holds nothing.
    [[nodiscard]] std::optional<QString> text(const QString &key) const;

    /// Sets the text under "AppleInterfaceStyle"; tells observers when it differs from before.
    void setInterfaceStyle(const std::optional<QString> &style);

Q_SIGNALS:
    void changed();

private:
    mutable QMutex m_mutex;
    std::optional<QString> m_interfaceStyle;
};

} // namespace oblino
