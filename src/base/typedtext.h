#pragma once

#include <QString>

namespace oblino {

/// The text in the one form in which typed dates and times are compared: folded case, single blanks, ASCII
/// digits for those of any script.
[[nodiscard]] QString foldedTyping(const QString &text);

} // namespace oblino
