#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace oblino {

/// What is about to be written to a user's file, noted down completely before the file is touched.
struct Journal
{
    /// What was found in the file, held against the journal.
    enum class State {
        Old,      ///< what it held before
        New,      ///< what it is to hold
        Torn,     ///< the writing that was cut off
        CutShort, ///< a beginning that the writing does not leave: the end was lost or taken away
        Other,    ///< something else, which another program wrote
    };

    QByteArray path;               ///< the file, after symbolic links
    std::optional<QByteArray> old; ///< what the file held, where that is known
    QByteArray text;               ///< what the file is to hold

    [[nodiscard]] State stateOf(QByteArrayView found) const;

    /// The journal as bytes for a file, closed by a checksum over all of them. Of the old text they hold only
    /// what the new one does not begin and end with.
    [[nodiscard]] QByteArray encoded() const;

    /// The journal in `bytes`, or none where they are cut short, damaged or something else.
    [[nodiscard]] static std::optional<Journal> decoded(const QByteArray &bytes);

    bool operator==(const Journal &) const = default;
};

} // namespace oblino
