#pragma once

#include <core/taskstep.h>

#include <QString>

namespace oblino {

/// A step in words for a menu, as in "Delete “Paint the fence”" or "Hide 3 Tasks".
[[nodiscard]] QString stepText(const TaskStep &step);

} // namespace oblino
