#pragma once

#include <QString>
#include <QStringView>

namespace oblino {

/// The separators of the task list file. Nothing in a field is escaped.
inline constexpr char separatorFieldsFile = '|'; ///< between two fields of a row
inline constexpr char separatorRowsFile = '^';   ///< after the last field of every row, the last row included

/// Whether a text may be typed into a field that ends up in that file: it holds neither of them.
[[nodiscard]] bool isFieldText(QStringView text);

/// The text with the look-alikes "¦" and "ˆ" in their place, as the file holds it.
[[nodiscard]] QString withLookAlikes(QString text);

/// Why other texts are refused, as a sentence for the user.
[[nodiscard]] QString fieldTextError();

} // namespace oblino
