#pragma once

#include <files/safefile.h>

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace oblino {

/// The picture file of the whiteboard, rewritten in place. A file that is no picture of a board, or that
/// another program has changed, is kept in the recovery folder before the first picture replaces it. What a
/// link of another user leads to, in a folder that others may write, is neither read, written nor removed.
class WhiteboardFile
{
public:
    struct Reading
    {
        QImage picture;         ///< null where there is none that can be read
        bool hasFailed = false; ///< there is one, perhaps, but the system could not read it
        QStringList notices;    ///< what the user should know, in whole sentences
    };

    static inline const QString name = QStringLiteral("ltodolistwhiteboard.png");

    /// @param documentsFolder  for a picture that the recovery folder does not take; empty for none
    [[nodiscard]] static EarlierVersions versions(const QString &privateFolder,
                                                  const QString &documentsFolder);

    explicit WhiteboardFile(QString privateFolder, FileCalls &calls = FileCalls::posix());

    /// A PNG picture of other proportions than the board's is read all the same; texts in it are not.
    /// @param board  the size of the board, in any unit
    [[nodiscard]] Reading read(const QString &path, QSize board);

    /// Whether the file still holds the picture of a board that was last read or written. Cheap.
    [[nodiscard]] bool isAsSeen() { return m_file && m_file->isAsSeen(); }

    [[nodiscard]] FileWriting write(const QByteArray &png, const QString &path);

    /// Removes the picture, and every copy of one that was kept.
    /// @return an error in words, empty when nothing is left; a file that is missing is an error
    [[nodiscard]] QString erase(const QString &path);

private:
    [[nodiscard]] SafeFile &fileAt(const QString &path, QStringList &notices);
    [[nodiscard]] QString moveHuge(const QString &path, QStringList &notices);

    QString m_privateFolder;
    FileCalls &m_calls;
    std::optional<SafeFile> m_file; // the one used last
};

} // namespace oblino
