#pragma once

#include <platform/recoveryfolder.h>

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>

namespace oblino {

/// The picture file of the whiteboard. A file that is no picture of a board, or that another program has
/// changed, is kept in the recovery folder before the first picture replaces it.
class WhiteboardFile
{
public:
    /// @param board  the size of the board, in any unit; pictures of it have its proportions
    WhiteboardFile(const QString &privateFolder, QSize board);

    /// The picture; null where there is none that can be read. A PNG picture of other proportions is read all
    /// the same.
    [[nodiscard]] QImage read(const QString &path);

    /// Replaces the file in one step.
    /// @return an error in words, empty when it was written
    [[nodiscard]] QString write(const QByteArray &png, const QString &path);

private:
    /// How a file looks from outside.
    struct Stamp
    {
        qint64 size = -1;
        QDateTime time;
        friend bool operator==(const Stamp &, const Stamp &) = default;
    };

    [[nodiscard]] static Stamp stampOf(const QString &path);
    [[nodiscard]] bool isOfBoard(QSize picture) const;
    [[nodiscard]] QString keepAside(const QString &path);

    RecoveryFolder m_recovery;
    QSize m_board;
    Stamp m_ours; // of the file while it holds a picture that is safe to replace
};

} // namespace oblino
