#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

namespace oblino {

/// Where a window was: its frame's corner and its own size, in pixels.
struct WindowPlace
{
    QPoint corner;
    QSize size;
    bool isMaximized = false;

    friend bool operator==(const WindowPlace &, const WindowPlace &) = default;
};

/// The place as text, as in "640x480+10+20 max".
[[nodiscard]] QString placeText(const WindowPlace &place);
/// None for a text that is no such place.
[[nodiscard]] std::optional<WindowPlace> placeOfText(const QString &text);

/// The frame of a window brought onto a screen as a whole: onto the one that shows most of it, or the first
/// where none does; no larger than that.
/// @param screens  what windows may cover of each
[[nodiscard]] QRect placedOnScreen(const QRect &frame, const QList<QRect> &screens);

} // namespace oblino
