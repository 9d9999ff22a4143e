#include <files/journalstore.h>

#include <files/fileerror.h>
#include <files/openfile.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

JournalStore::JournalStore(QString folder, FileCalls &calls)
    : m_folder(std::move(folder))
    , m_calls(calls)
{
}

QByteArray JournalStore::fileFor(const QByteArray &path) const
{
    constexpr qsizetype digits = 32;
    return QFile::encodeName(m_folder) + '/' + sha256(path).toHex().first(digits) + ".journal";
}

QByteArray JournalStore::unfinishedFor(const QByteArray &path) const
{
    return fileFor(path) + ".tmp";
}

std::optional<Journal> JournalStore::load(const QByteArray &path) const
{
    QByteArray bytes;
    const auto failure =
        failureOf([&] { bytes = OpenFile::regular(m_calls, fileFor(path), O_RDONLY).readAll(); });
    if (failure && (failure->code == ENOENT || failure->code == ENOTDIR))
        return std::nullopt;
    if (failure)
        throw FileError{failure->code, m_folder};
    std::optional<Journal> journal = Journal::decoded(bytes);
    if (!journal)
        throw FileError{FileError::damaged, m_folder};
    return journal;
}

void JournalStore::store(const Journal &journal)
{
    const QByteArray unfinished = unfinishedFor(journal.path);
    inFolder(m_folder, [&] {
        try {
            OpenFile file = OpenFile::inPrivateFolder(m_calls, unfinished, O_TRUNC);
            file.writeAll(journal.encoded());
            file.sync();
            renameFile(m_calls, unfinished, fileFor(journal.path));
        } catch (const FileError &) {
            m_calls.unlink(unfinished);
            throw;
        }
    });
}

void JournalStore::syncNames()
{
    inFolder(m_folder, [&] { syncDirectory(m_calls, QFile::encodeName(m_folder)); });
}

void JournalStore::remove(const QByteArray &path)
{
    m_calls.unlink(fileFor(path));
}

void JournalStore::erase(const QByteArray &path)
{
    for (const QByteArray &file : filesOf(path))
        removeFile(m_calls, file);
    const auto failure = failureOf([&] { syncNames(); });
    if (failure && failure->code != ENOENT) // without the folder there never was a journal
        throw *failure;
}

QByteArrayList JournalStore::filesOf(const QByteArray &path) const
{
    QByteArrayList files = {fileFor(path), unfinishedFor(path)};
    const QByteArray ending = path.mid(path.lastIndexOf('/'));
    const QDir folder(m_folder);
    for (const QString &name : folder.entryList({QStringLiteral("*.journal*")}, QDir::Files)) {
        const QByteArray file = QFile::encodeName(folder.filePath(name));
        QByteArray bytes;
        const auto failure = failureOf([&] { bytes = OpenFile::regular(m_calls, file, O_RDONLY).readAll(); });
        if (!failure && Journal::pathIn(bytes).endsWith(ending))
            files += file;
    }
    return files;
}

void JournalStore::removeUnfinished(const QByteArray &path)
{
    m_calls.unlink(unfinishedFor(path));
}

} // namespace oblino
