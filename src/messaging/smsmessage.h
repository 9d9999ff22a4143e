#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace oblino {

constexpr qsizetype longestSms = 160; ///< characters, as a reader counts them

/// The number of characters in a text, as a reader counts them.
[[nodiscard]] qsizetype characterCount(const QString &text);

/// The first 160 characters of a message, as a reader counts them: a base with its combining marks, an emoji
/// sequence or a carriage return with its line feed is one, and is never split.
[[nodiscard]] QString smsText(const QString &message);

/// The body of the request, "From=..&To=..&Body=..", each value percent-encoded as UTF-8.
[[nodiscard]] QByteArray smsForm(const QString &from, const QString &to, const QString &text);

/// The address to which an account's messages are sent. None where the account's id or secret has a character
/// that no address can carry as it is. Both may have ASCII letters and digits and any of -._~!$&'()*+,;= and
/// the secret colons too; an id that is "." or ".." would be another address.
/// @param port  443 is left unsaid
[[nodiscard]] std::optional<QUrl> smsUrl(const QString &host, quint16 port, const QString &sid,
                                         const QString &secret);

/// Whether the service's answer speaks of an error.
[[nodiscard]] bool isSmsError(const QString &response);

/// The pause after a message: the delay in microseconds. Below 0 ms counts as 0, above 4,294,967 ms as that.
[[nodiscard]] std::chrono::microseconds smsPause(qint64 delay);

} // namespace oblino
