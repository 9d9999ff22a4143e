#include <controls/windowplace.h>

#include <QRegularExpression>

#include <algorithm>

namespace oblino {

QString placeText(const WindowPlace &place)
{
    const QString text = QStringLiteral("%1x%2%3%4%5%6")
                             .arg(place.size.width())
                             .arg(place.size.height())
                             .arg(place.corner.x() < 0 ? QString() : QStringLiteral("+"))
                             .arg(place.corner.x())
                             .arg(place.corner.y() < 0 ? QString() : QStringLiteral("+"))
                             .arg(place.corner.y());
    return place.isMaximized ? text + QStringLiteral(" max") : text;
}

std::optional<WindowPlace> placeOfText(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^(\d{1,5})x(\d{1,5})([+-]\d{1,5})([+-]\d{1,5})( max)?$)"));
    const QRegularExpressionMatch match = form.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.isEmpty())
        return {};
    return WindowPlace{
        {match.captured(3).toInt(), match.captured(4).toInt()}, size, !match.captured(5).isEmpty()};
}

QRect placedOnScreen(const QRect &frame, const QList<QRect> &screens)
{
    if (screens.isEmpty())
        return frame;
    const auto shownOn = [&frame](const QRect &screen) {
        const QSize shown = screen.intersected(frame).size();
        return shown.isEmpty() ? qint64(0) : qint64(shown.width()) * shown.height();
    };
    const QRect &screen = *std::ranges::max_element(screens, {}, shownOn);
    const QSize size = frame.size().boundedTo(screen.size());
    const QPoint last = screen.bottomRight() - QPoint(size.width() - 1, size.height() - 1);
    return {QPoint(std::clamp(frame.x(), screen.x(), last.x()), std::clamp(frame.y(), screen.y(), last.y())),
            size};
}

} // namespace oblino
