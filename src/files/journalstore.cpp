#include <files/journalstore.h>

#include <files/openfile.h>

#include <QDir>
#include <QFile>

#include <cerrno>

#include <fcntl.h>

namespace oblino {

JournalStore::JournalStore(const QString &folder, FileCalls &calls)
    : m_folder(QFile::encodeName(folder))
    , m_calls(calls)
{
}

QByteArray JournalStore::fileFor(const QByteArray &path) const
{
    constexpr qsizetype digits = 32;
    return m_folder + '/' + sha256(path).toHex().first(digits) + ".journal";
}

QByteArray JournalStore::unfinishedFor(const QByteArray &path) const
{
    return fileFor(path) + ".tmp";
}

int JournalStore::load(const QByteArray &path, std::optional<Journal> &journal)
{
    QByteArray bytes;
    OpenFile file(m_calls);
    int error = file.openRegular(fileFor(path), O_RDONLY);
    if (error == 0)
        error = file.readAll(bytes);
    if (error == 0)
        journal = Journal::decoded(bytes);
    return error == ENOTDIR ? ENOENT : error; // in what is no folder there is no journal
}

int JournalStore::store(const Journal &journal, bool &isInPlace)
{
    const QByteArray unfinished = unfinishedFor(journal.path);
    OpenFile file(m_calls);
    int error = file.openPrivate(unfinished, O_TRUNC);
    if (error == 0)
        error = file.writeAll(journal.encoded());
    if (error == 0)
        error = file.sync();
    if (error == 0)
        error = renameFile(m_calls, unfinished, fileFor(journal.path));
    isInPlace = error == 0;
    if (isInPlace)
        return syncNames();
    m_calls.unlink(unfinished);
    return error;
}

int JournalStore::syncNames()
{
    return syncDirectory(m_calls, m_folder);
}

void JournalStore::remove(const QByteArray &path)
{
    m_calls.unlink(fileFor(path));
}

int JournalStore::erase(const QByteArray &path)
{
    for (const QByteArray &file : filesOf(path)) {
        if (m_calls.unlink(file) != 0 && errno != ENOENT)
            return errno;
    }
    const int error = syncNames();
    return error == ENOENT ? 0 : error; // without the folder there never was a journal
}

QByteArrayList JournalStore::filesOf(const QByteArray &path)
{
    QByteArrayList files = {fileFor(path), unfinishedFor(path)};
    const QByteArray ending = path.mid(path.lastIndexOf('/'));
    const QDir folder(QFile::decodeName(m_folder));
    for (const QString &name : folder.entryList({QStringLiteral("*.journal*")}, QDir::Files)) {
        const QByteArray file = QFile::encodeName(folder.filePath(name));
        QByteArray bytes;
        OpenFile other(m_calls);
        const bool isRead = other.openRegular(file, O_RDONLY) == 0 && other.readAll(bytes) == 0;
        if (isRead && Journal::pathIn(bytes).endsWith(ending))
            files += file;
    }
    return files;
}

void JournalStore::removeUnfinished(const QByteArray &path)
{
    m_calls.unlink(unfinishedFor(path));
}

} // namespace oblino
