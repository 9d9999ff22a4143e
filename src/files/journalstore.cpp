#include <files/journalstore.h>

#include <files/fileerror.h>
#include <files/openfile.h>
#include <files/sha256.h>
#include <files/versionname.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype digits = 32; // of the hash of a path

/// The name of the user's file, as that of its journal begins.
QString userName(const QByteArray &path)
{
    return shortenedName(QFileInfo(QFile::decodeName(path)).fileName());
}

} // namespace

JournalStore::JournalStore(QString folder, FileCalls &calls)
    : m_folder(std::move(folder))
    , m_calls(calls)
{
}

QByteArray JournalStore::fileFor(const QByteArray &path) const
{
    const QString hash = QString::fromLatin1(sha256(path).toHex().first(digits));
    return QFile::encodeName(m_folder + u'/' + userName(path) + u'.' + hash + u".journal"_s);
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
    const QRegularExpression journal(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(userName(path)) + u"\\.[0-9a-f]{%1}\\.journal(\\.tmp)?"_s.arg(digits)));
    const QDir folder(m_folder);
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden).filter(journal))
        removeFile(m_calls, QFile::encodeName(folder.filePath(name)));
    const auto failure = failureOf([&] { syncNames(); });
    if (failure && failure->code != ENOENT) // without the folder there never was a journal
        throw *failure;
}

void JournalStore::removeUnfinished(const QByteArray &path)
{
    m_calls.unlink(unfinishedFor(path));
}

} // namespace oblino
