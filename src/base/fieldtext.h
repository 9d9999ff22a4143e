#pragma once

#include <QString>
#include <QStringView>

namespace oblino {

/// Whether a text may be typed into a field that ends up in the task list file, where "|" ends a field and
/// "^" a row.
[[nodiscard]] bool isFieldText(QStringView text);

/// The text with "¦" and "ˆ" in place of these two, as the file holds it.
[[nodiscard]] QString withLookAlikes(QString text);

/// Why other texts are refused, as a sentence for the user.
[[nodiscard]] QString fieldTextError();

} // namespace oblino
