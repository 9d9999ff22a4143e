#include <tools/whiteboardfile.h>

#include <platform/openfile.h>

#include <QFileInfo>
#include <QSaveFile>

#include <cstdlib>

namespace oblino {

namespace {

// Far above any board, and small enough to be read at once.
constexpr qint64 largestFile = 64 << 20; // bytes

} // namespace

WhiteboardFile::WhiteboardFile(const QString &privateFolder, QSize board)
    : m_recovery(privateFolder + QStringLiteral("/recovery"), FileCalls::posix())
    , m_board(board)
{
}

QImage WhiteboardFile::read(const QString &path)
{
    m_ours = {};
    const Stamp stamp = stampOf(path);
    QFile file(path);
    // Opening anything but a regular file might wait for ever.
    if (!QFileInfo(path).isFile() || stamp.size > largestFile || !file.open(QIODevice::ReadOnly))
        return {};
    // A picture of more than 128 MiB is refused before anything is decoded.
    QImage picture = QImage::fromData(file.readAll(), "PNG");
    if (!picture.isNull() && isOfBoard(picture.size()))
        m_ours = stamp;
    return picture;
}

QString WhiteboardFile::write(const QByteArray &png, const QString &path)
{
    const QFileInfo before(path);
    if (before.exists() && !before.isFile())
        return QStringLiteral("“%1” is not a file.").arg(path);
    if (before.size() > 0 && stampOf(path) != m_ours) {
        if (QString error = keepAside(path); !error.isEmpty())
            return error;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(png) != png.size() || !file.commit())
        return QStringLiteral("“%1” could not be written: %2.").arg(path, file.errorString());
    m_ours = stampOf(path);
    return {};
}

WhiteboardFile::Stamp WhiteboardFile::stampOf(const QString &path)
{
    const QFileInfo info(path);
    return {info.size(), info.lastModified()};
}

bool WhiteboardFile::isOfBoard(QSize picture) const
{
    const double scale = double(picture.width()) / m_board.width();
    return std::abs(picture.height() - m_board.height() * scale) <= 1;
}

QString WhiteboardFile::keepAside(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    RecoveryFolder::Kept kept;
    if (info.size() > largestFile)
        kept = m_recovery.move(QFile::encodeName(info.canonicalFilePath()), info.fileName());
    else if (file.open(QIODevice::ReadOnly))
        kept = m_recovery.keep(file.readAll(), info.fileName());
    else
        return QStringLiteral("“%1” could not be read: %2.").arg(path, file.errorString());
    return kept.error == 0 ? QString()
                           : QStringLiteral("“%1” could not be kept: %2.").arg(path, errorWords(kept.error));
}

} // namespace oblino
