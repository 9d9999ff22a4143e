#pragma once

#include <files/documents.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace oblino {

/// The notes file, "ltodonotes.txt" in the documents folder: plain UTF-8 text and nothing else. What was read
/// and not edited is written back byte for byte. A file that is not valid UTF-8 is not read; it is copied
/// into the recovery folder before the first save replaces it.
class NotesFile
{
public:
    struct Reading
    {
        std::optional<QString> text; ///< none where there is none that can be read
        QString error;               ///< why, in words
        QStringList notices;         ///< what the user should know, in whole sentences
    };

    static inline const QString name = QStringLiteral("ltodonotes.txt");

    explicit NotesFile(Documents &documents);

    /// Whether there is a documents folder, without which nothing is read or written.
    [[nodiscard]] bool hasPlace() const;
    [[nodiscard]] QString path() const { return m_documents.path(name); }

    [[nodiscard]] Reading read();

    /// Whether nobody has touched the file since it was last read or written. Cheap.
    [[nodiscard]] bool isAsSeen();

    /// Reads what another program has made of the file. What was in it before is kept among the earlier
    /// versions, unless the new text goes on from there. A file that is gone, emptied, cut short in the midst
    /// of a line or not valid UTF-8 answers no text, and is copied before the next save replaces it.
    [[nodiscard]] Reading readAgain();

    /// Writes `bytes`, which costs next to nothing where the file holds them and nobody has touched it.
    [[nodiscard]] FileWriting write(const QByteArray &bytes);

    /// What the file is to hold for an edited text, in which U+2029 ends a line (see withLineEnds()).
    [[nodiscard]] QByteArray bytesOf(const QString &text) const;
    /// What was last read or written.
    [[nodiscard]] QByteArray bytes() const { return m_bytes; }

private:
    Documents &m_documents;
    QByteArray m_bytes; // last read or written
};

} // namespace oblino
