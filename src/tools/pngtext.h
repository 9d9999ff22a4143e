#pragma once

#include <QByteArray>

namespace oblino {

/// A PNG file without its texts (chunks tEXt, zTXt and iTXt), which a decoder would expand to a thousand
/// times their size. All other bytes stay as they are, those of a damaged file too.
[[nodiscard]] QByteArray withoutPngText(const QByteArray &png);

} // namespace oblino
