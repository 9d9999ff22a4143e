#pragma once

#include <base/color.h>

#include <QString>

namespace oblino {

/// What a colour is called, for people who hear or read it: the nearest of some fifty names ("Sky", "Dark
/// red"), and how much of it covers the ground where it is not opaque.
[[nodiscard]] QString colorName(const Color &color);

} // namespace oblino
