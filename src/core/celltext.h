#pragma once

#include <core/task.h>

#include <QLocale>
#include <QString>
#include <QStringView>

namespace oblino {

/// The text of the task table's cell in the column of that identifier; empty for any other identifier.
/// Dates take the locale's short form.
[[nodiscard]] QString cellText(const task &t, const QString &identifier, const QLocale &locale);

/// The text before its first line feed, followed by "..."; a text without a line feed as it is.
[[nodiscard]] QString textUntilLineFeed(const QString &text);

} // namespace oblino
