#pragma once

#include <QDateTime>

namespace oblino {

/// The moment, in local time.
[[nodiscard]] QDateTime now();
/// The calendar day, in local time.
[[nodiscard]] QDate today();

} // namespace oblino
