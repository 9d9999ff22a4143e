#pragma once

#include <QString>

namespace oblino {

/// A form of the text that is the same for texts that differ in the case of letters alone, or that are
/// canonically equivalent: canonical decomposition and simple case folding of the Unicode standard, so that ß
/// stays apart from ss.
[[nodiscard]] QString foldedText(const QString &text);

} // namespace oblino
