#pragma once

#include <base/color.h>

#include <QList>

namespace oblino {

/// The colours that are offered for a task, the neutral one first: light ones, and in the dark appearance
/// their inverses. On each of them text of black or white has a contrast of 9 : 1 at least.
[[nodiscard]] QList<Color> taskSwatches(bool inDark);

/// Those for a pen on white paper, the neutral one first, with a contrast of 3 : 1 at least.
[[nodiscard]] QList<Color> penSwatches();

} // namespace oblino
