#pragma once

#include <QByteArrayView>

namespace oblino {

/// Whether `found` is what rewriting a file from `before` to `after` in place can leave when it is cut off:
/// it is no longer than the longer of them, and every block of 4096 bytes is that of one of them at this
/// place, except for one at most, which begins like `after` and goes on like `before`. Where `before` has
/// ended, zeros stand for it, as a disk that loses power leaves them.
[[nodiscard]] bool isTornBetween(QByteArrayView found, QByteArrayView before, QByteArrayView after);

} // namespace oblino
