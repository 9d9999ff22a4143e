#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace oblino {

constexpr qsizetype sha256Size = 32; ///< bytes

[[nodiscard]] QByteArray sha256(QByteArrayView bytes);

} // namespace oblino
