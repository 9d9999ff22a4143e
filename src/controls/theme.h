#pragma once

#include <base/color.h>

#include <QColor>
#include <QPalette>

namespace oblino {

/// The program's own palette, light or dark, for desktops without a style of their own.
[[nodiscard]] QPalette calmPalette(bool dark);

/// Gives the application its own style and palette where the desktop brings none.
void applyAppearance(bool dark);

/// Whether the windows of the palette are dark.
[[nodiscard]] bool isDark(const QPalette &palette);

/// The colour for the screen: components outside 0..1 count as the nearest inside.
[[nodiscard]] QColor screenColor(const Color &color);

/// A component of sRGB, 0..1, as the light that it stands for, 0..1.
[[nodiscard]] double linearComponent(double component);

/// Black or white, whichever contrasts more with an opaque background.
[[nodiscard]] QColor readableOn(const QColor &background);

/// A colour with alpha laid over an opaque one.
[[nodiscard]] QColor composited(const QColor &color, const QColor &ground);

} // namespace oblino
