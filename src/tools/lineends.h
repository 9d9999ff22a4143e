#pragma once

#include <QString>

namespace oblino {

/// A text for a file, made of one from a text control, in which U+2029 ends every line. Lines that were not
/// edited keep the line ends that they have in the file, of whatever kind; a new line gets its
/// neighbour's, several get the first of the file.
/// @param edited    the control's text
/// @param original  the file's text, from which the control's was made
[[nodiscard]] QString withLineEnds(const QString &edited, const QString &original);

/// A text of a file as a text control holds it, in which U+2029 ends every line.
[[nodiscard]] QString withControlLineEnds(QString text);

} // namespace oblino
