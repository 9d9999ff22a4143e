#pragma once

#include <QString>

class QHeaderView;

namespace oblino {

/// The columns of a table as text, from left to right: each one's number, a colon, and its width in pixels or
/// "-" where it is hidden, as in "3:120,0:80,10:-".
[[nodiscard]] QString headerState(const QHeaderView &header);

/// Gives a header the columns of such a text. One that is damaged, is of another number of columns or hides
/// all of them changes nothing.
void restoreHeader(QHeaderView &header, const QString &state);

} // namespace oblino
