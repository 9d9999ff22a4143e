#pragma once

#include <QLocale>
#include <QString>
#include <QTime>

#include <optional>

namespace oblino {

/// Reads a time of day that a person has typed, to the minute: 9, 930, 1630, 9:30, 9.30, 14h30, 14 Uhr, with
/// am, pm, a, p or the locale's own texts for them before or behind it, and the locale's forms.
/// @return none where the text is no time, as with 24:00, 9:5 and 14:30 pm
[[nodiscard]] std::optional<QTime> readTime(const QString &text, const QLocale &locale);

/// The locale's short form of a time of day, to the minute.
[[nodiscard]] QString shortTime(QTime time, const QLocale &locale);

} // namespace oblino
