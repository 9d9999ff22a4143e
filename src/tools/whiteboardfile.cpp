#include <tools/whiteboardfile.h>

#include <platform/openfile.h>
#include <platform/trace.h>

#include <QDir>
#include <QFileInfo>

#include <cstdlib>
#include <utility>

namespace oblino {

namespace {

// Far above any board, and small enough to be read at once.
constexpr qint64 largestFile = 64 << 20; // bytes

bool isOfBoard(QSize picture, QSize board)
{
    const double scale = double(picture.width()) / board.width();
    return std::abs(picture.height() - board.height() * scale) <= 1;
}

void traceAll(const QStringList &notices)
{
    for (const QString &notice : notices)
        trace(notice);
}

} // namespace

WhiteboardFile::WhiteboardFile(QString privateFolder)
    : m_privateFolder(std::move(privateFolder))
{
}

QImage WhiteboardFile::read(const QString &path, QSize board)
{
    SafeFile &file = fileAt(path);
    file.forget();
    if (QFileInfo(path).size() > largestFile)
        return {};
    const FileReading reading = file.read();
    // A picture of more than 128 MiB is refused before anything is decoded.
    QImage picture = QImage::fromData(reading.bytes, "PNG");
    if (!reading.bytes.isEmpty() && (picture.isNull() || !isOfBoard(picture.size(), board)))
        file.forget();
    return picture;
}

QString WhiteboardFile::write(const QByteArray &png, const QString &path)
{
    SafeFile &file = fileAt(path);
    if (QString error = moveHuge(path); !error.isEmpty())
        return error;
    FileWriting writing = file.write(png);
    traceAll(writing.notices);
    return std::move(writing.error);
}

QString WhiteboardFile::erase(const QString &path)
{
    return fileAt(path).erase();
}

SafeFile &WhiteboardFile::fileAt(const QString &path)
{
    const QString absolute = QDir::current().absoluteFilePath(path);
    if (!m_file || m_file->path() != absolute)
        traceAll(m_file.emplace(absolute, m_privateFolder).recover());
    return *m_file;
}

QString WhiteboardFile::moveHuge(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.size() <= largestFile)
        return {};
    RecoveryFolder recovery(m_file->recoveryFolder(), FileCalls::posix());
    const RecoveryFolder::Kept kept =
        recovery.move(QFile::encodeName(info.canonicalFilePath()), info.fileName(), VersionReason::Unread);
    return kept.error == 0 ? QString()
                           : QStringLiteral("“%1” could not be kept: %2.").arg(path, errorWords(kept.error));
}

} // namespace oblino
