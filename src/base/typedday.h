#pragma once

#include <QDate>
#include <QLocale>
#include <QString>

#include <optional>

namespace oblino {

/// Reads a day that a person has typed, in any case of letters and in any script's digits:
/// - the locale's short and long forms, and its order of day, month and year with any of the separators
///   . / - , and blank or with none (251226, 25122026);
/// - ISO 8601 (2026-12-25, 20261225), and a year of four digits first in any locale;
/// - months by name, whole or from their first three letters, in the locale's language or English;
/// - day and month alone: of this year, or of the next where that day is more than half a year back;
/// - today, tomorrow, yesterday, also in German, French, Spanish, Swedish and Japanese;
/// - the name of a weekday: the next such day after `today`;
/// - +3 and -2: days from `today`.
/// A year of two digits is the one from 50 before to 49 after the year of `today`.
/// @return none where the text is no day, or more than one day could be meant
[[nodiscard]] std::optional<QDate> readDay(const QString &text, const QLocale &locale, QDate today);

/// The locale's short form of a day, with four digits for the year.
[[nodiscard]] QString shortDay(QDate day, const QLocale &locale);

} // namespace oblino
