#pragma once

#include <QStringView>

namespace oblino {

/// Whether a text may be typed into a field that ends up in the task list file, where "|" ends a field and
/// "^" a row.
[[nodiscard]] bool isFieldText(QStringView text);

} // namespace oblino
