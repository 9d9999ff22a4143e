#pragma once

#include <QByteArray>
#include <QString>
#include <QStringDecoder>

#include <optional>

namespace oblino {

/// The text in `bytes`; none where they are not valid UTF-8. A byte order mark at the start is left out,
/// unless the flags say ConvertInitialBom.
[[nodiscard]] inline std::optional<QString> decodedUtf8(const QByteArray &bytes,
                                                        QStringDecoder::Flags flags = {})
{
    QStringDecoder decoder(QStringDecoder::Utf8, flags | QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace oblino
