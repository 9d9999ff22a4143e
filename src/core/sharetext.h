#pragma once

#include <core/task.h>

#include <QLocale>
#include <QString>

namespace oblino {

/// The text by which one task is handed to other programs: title, fields, keys, footer and a closing block
/// with the address of the program's store page. It does not end in a line feed.
/// @param messageKey  names this message; new for every share
/// @param locale      gives the short form of dates
[[nodiscard]] QString shareText(const task &t, const QString &title, const QString &footer,
                                const QString &messageKey, const QLocale &locale);

/// The closing block of everything that is shared. It does not end in a line feed.
[[nodiscard]] QString shareClosing();

} // namespace oblino
