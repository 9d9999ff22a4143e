#include <base/appearance.h>

namespace oblino {

Appearance::Appearance(QObject *parent)
    : QObject(parent)
{
}

Appearance &Appearance::standard()
{
    static Appearance instance;
    return instance;
}

std::optional<QString> Appearance::text(const QString &key) const
{
    const QMutexLocker lock(&m_mutex);
    return key == QLatin1String("AppleInterfaceStyle") ? m_interfaceStyle : std::nullopt;
}

void Appearance::setInterfaceStyle(const std::optional<QString> &style)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (style == m_interfaceStyle)
            return;
        m_interfaceStyle = style;
    }
    Q_EMIT changed();
}

} // namespace oblino
