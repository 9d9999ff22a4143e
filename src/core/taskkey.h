#pragma once

#include <QString>

namespace oblino {

/// The text of a new random (version 4) UUID: 36 characters, upper case, groups of 8, 4, 4, 4 and 12
/// hexadecimal digits joined by hyphens. New tasks and messages are named by it.
[[nodiscard]] QString newUuidText();

} // namespace oblino
