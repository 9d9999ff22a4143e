#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace oblino {

[[nodiscard]] QByteArray sha256(QByteArrayView bytes);

/// What is about to be written to a user's file, noted down completely before the file is touched.
struct Journal
{
    QByteArray path;    ///< the file, after symbolic links
    QByteArray oldHash; ///< SHA-256 of what the file held, empty where that is not known
    QByteArray newHash; ///< SHA-256 of `text`
    QByteArray text;    ///< what the file is to hold

    /// The journal as bytes for a file, closed by a checksum over all of them.
    [[nodiscard]] QByteArray encoded() const;

    /// The journal in `bytes`, or none where they are cut short, damaged or something else.
    [[nodiscard]] static std::optional<Journal> decoded(const QByteArray &bytes);

    /// The path in the bytes of a journal, damaged or not; empty where they do not reach that far.
    [[nodiscard]] static QByteArray pathIn(const QByteArray &bytes);

    bool operator==(const Journal &) const = default;
};

} // namespace oblino
