#pragma once

#include <platform/documents.h>

#include <QByteArray>
#include <QString>

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
        std::optional<QString> text; ///< none where the file could not be read
        QString error;               ///< why, in words
    };

    static inline const QString name = QStringLiteral("ltodonotes.txt");

    explicit NotesFile(Documents &documents);

    /// Whether there is a documents folder, without which nothing is read or written.
    [[nodiscard]] bool hasPlace() const;

    [[nodiscard]] Reading read();

    /// Writes an edited text, in which U+2029 ends a line. It becomes the first line end of the file that was
    /// read, or a line feed.
    /// @return an error in words, empty when it was written
    [[nodiscard]] QString write(QString text);

    /// Sees to it that the file holds what was last read or written, which costs next to nothing where nobody
    /// has touched it since.
    /// @return an error in words, empty when it does
    [[nodiscard]] QString writeUnchanged();

private:
    [[nodiscard]] QString write(const QByteArray &bytes);

    Documents &m_documents;
    QByteArray m_bytes; // last read or written
    QString m_lineEnd;
};

} // namespace oblino
