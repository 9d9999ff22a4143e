#include <tools/whiteboardfile.h>

#include <files/earlierversions.h>
#include <tools/pngtext.h>

#include <QDir>
#include <QFileInfo>

#include <cstdlib>
#include <filesystem>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace oblino {

namespace {

// Far above any board, and small enough to be read at once.
constexpr qint64 largestFile = 64 << 20; // bytes

const QString foreignLinkWords =
    QStringLiteral("it is a link of another user in a folder that others may write");

bool isOfBoard(QSize picture, QSize board)
{
    const double scale = double(picture.width()) / board.width();
    return std::abs(picture.height() - board.height() * scale) <= 1;
}

bool mayOthersWrite(const struct stat &folder)
{
    const bool isOfOther = folder.st_uid != ::geteuid() && folder.st_uid != 0;
    return isOfOther || (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

// Whoever owns a link in a folder that others may write decides which file of ours is read, or replaced.
bool leadsOverForeignLink(const QString &path)
{
    constexpr int mostLinks = 40;
    std::filesystem::path file(QFile::encodeName(QFileInfo(path).absoluteFilePath()).toStdString());
    std::error_code error;
    for (int links = 0; links < mostLinks && !error; ++links) {
        struct stat link = {};
        struct stat folder = {};
        if (::lstat(file.c_str(), &link) != 0 || !S_ISLNK(link.st_mode))
            return false;
        if (link.st_uid != ::geteuid() &&
            (::stat(file.parent_path().c_str(), &folder) != 0 || mayOthersWrite(folder)))
            return true;
        file = file.parent_path() / std::filesystem::read_symlink(file, error);
    }
    return true;
}

QString fileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

} // namespace

EarlierVersions WhiteboardFile::versions(const QString &privateFolder, const QString &documentsFolder)
{
    return EarlierVersions(name, EarlierVersions::standardFolders(privateFolder, documentsFolder));
}

WhiteboardFile::WhiteboardFile(QString privateFolder, FileCalls &calls)
    : m_privateFolder(std::move(privateFolder))
    , m_calls(calls)
{
}

WhiteboardFile::Reading WhiteboardFile::read(const QString &path, QSize board)
{
    const QString unreadWords = QStringLiteral("“%1” was not read: %2.").arg(fileName(path));
    if (leadsOverForeignLink(path))
        return {{}, false, {unreadWords.arg(foreignLinkWords)}};
    Reading result;
    SafeFile &file = fileAt(path, result.notices);
    if (QFileInfo(path).size() > largestFile) {
        file.invalidate();
        result.notices << unreadWords.arg(QStringLiteral("it has more than 64 MiB"));
        return result;
    }
    const FileReading reading = file.read();
    result.hasFailed = reading.outcome == FileReading::Outcome::Failed;
    if (result.hasFailed)
        result.notices << reading.error;
    // A picture of more than 128 MiB is refused before anything is decoded.
    result.picture = QImage::fromData(withoutPngText(reading.bytes), "PNG");
    if (reading.bytes.isEmpty())
        return result;
    if (result.picture.isNull())
        result.notices << unreadWords.arg(QStringLiteral("it holds no picture that can be shown"));
    if (result.picture.isNull() || !isOfBoard(result.picture.size(), board))
        file.invalidate();
    return result;
}

FileWriting WhiteboardFile::write(const QByteArray &png, const QString &path)
{
    FileWriting writing;
    if (leadsOverForeignLink(path)) {
        writing.reason = foreignLinkWords;
    } else {
        QStringList notices;
        SafeFile &file = fileAt(path, notices);
        writing.reason = moveHuge(path, notices);
        if (writing.reason.isEmpty())
            writing = file.write(png);
        writing.notices = notices + writing.notices;
    }
    if (!writing.written && writing.error.isEmpty()) {
        writing.error = QStringLiteral("“%1” could not be saved: %2.").arg(fileName(path), writing.reason);
    }
    return writing;
}

QString WhiteboardFile::erase(const QString &path)
{
    if (leadsOverForeignLink(path))
        return QStringLiteral("“%1” could not be removed: %2.").arg(fileName(path), foreignLinkWords);
    QStringList notices;
    return fileAt(path, notices).erase();
}

SafeFile &WhiteboardFile::fileAt(const QString &path, QStringList &notices)
{
    const QString absolute = QDir::current().absoluteFilePath(path);
    if (!m_file || m_file->path() != absolute)
        notices += m_file.emplace(absolute, m_privateFolder, m_calls).recover();
    return *m_file;
}

QString WhiteboardFile::moveHuge(const QString &path, QStringList &notices)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.size() <= largestFile)
        return {};
    const Quarantine kept = m_file->quarantineFile();
    if (!kept.error.isEmpty())
        return QStringLiteral("what it held could not be kept (%1)").arg(kept.reason);
    notices << QStringLiteral("“%1” held something that had not been read. It was moved to %2.")
                   .arg(info.fileName(), kept.path);
    return {};
}

} // namespace oblino
