#pragma once

#include <QIcon>
#include <QString>

namespace oblino {

/// One of the program's own icons, drawn from its SVG at any size and in the text colour of the palette at
/// the moment of drawing, so that it follows the appearance.
/// @param name  the file's name without its ending, as in "AppShowIcon"
[[nodiscard]] QIcon themedIcon(const QString &name);

} // namespace oblino
