#include <platform/safefile.h>

#include <platform/earlierversions.h>
#include <platform/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

SafeFile::SafeFile(QString path, const QString &privateFolder, FileCalls &calls)
    : m_path(std::move(path))
    , m_privateFolder(QDir(privateFolder).absolutePath())
    , m_calls(calls)
    , m_journals(m_privateFolder, calls)
    , m_recovery(m_privateFolder + u"/recovery"_s, calls)
{
}

QString SafeFile::fileName() const
{
    return QFileInfo(m_path).fileName();
}

QString SafeFile::journalPath() const
{
    return QFile::decodeName(m_journals.fileFor(withoutLinks(m_path)));
}

QString SafeFile::recoveryFolder() const
{
    return m_recovery.path();
}

SettingAside SafeFile::setAside(const QByteArray &bytes)
{
    const RecoveryFolder::Kept kept = m_recovery.keep(bytes, fileName(), VersionReason::SetAside);
    if (kept.error != 0)
        return {{}, notWritable(m_recovery.path(), kept.error)};
    return {kept.path, {}};
}

QStringList SafeFile::recover()
{
    QStringList notices;
    const QByteArray path = withoutLinks(m_path);
    m_journals.removeUnfinished(path);
    std::optional<Journal> journal;
    const int error = m_journals.load(path, journal);
    if (error == ENOENT) {
        m_strayJournal = false;
    } else if (error != 0) {
        notices << u"An interrupted save of “%1” could not be looked at: %2."_s.arg(fileName(),
                                                                                    errorWords(error));
    } else if (!journal) {
        setJournalAside(path, notices);
    } else if (journal->path == path) {
        finish(*journal, notices);
    }
    return notices;
}

void SafeFile::setJournalAside(const QByteArray &path, QStringList &notices)
{
    const RecoveryFolder::Kept kept =
        m_recovery.move(m_journals.fileFor(path), fileName() + u".journal"_s, VersionReason::Damaged);
    if (kept.error == 0) {
        m_strayJournal = false;
        notices << u"The record of an interrupted save of “%1” is damaged. It was moved to %2."_s.arg(
            fileName(), kept.path);
    } else {
        notices << u"The damaged record of an interrupted save of “%1” could not be moved away: %2."_s.arg(
            fileName(), errorWords(kept.error));
    }
}

void SafeFile::finish(const Journal &journal, QStringList &notices)
{
    m_seen = {};
    OpenFile file(m_calls);
    int error = openForSaving(file, journal.path);
    if (error != 0 && holds(journal.path, journal.newHash)) {
        m_journals.remove(journal.path);
        m_strayJournal = false;
        return;
    }
    if (error == 0 && !m_seen.known) {
        error = keepUnless({journal.oldHash, journal.newHash}, file, VersionReason::OtherProgram,
                           u"A save of “%1” was interrupted and has been completed. The file held something "
                           u"else meanwhile, which was copied to %2."_s,
                           notices);
    }
    if (error == 0)
        error = file.reserve(journal.text.size());
    if (error == 0)
        error = m_journals.syncNames();
    // Even a file that seems to hold the new text is written again: when syncing it failed, it does so in
    // memory only, and syncing once more would not help.
    if (error == 0)
        error = overwrite(file, journal);
    if (error == 0) {
        m_strayJournal = false;
        return;
    }
    m_pending = journal.text;
    notices << u"An interrupted save of “%1” could not be completed: %2. It will be tried again at the next "
               u"start."_s.arg(fileName(), errorWords(error));
}

bool SafeFile::holds(const QByteArray &path, const QByteArray &hash)
{
    OpenFile file(m_calls);
    QByteArray bytes;
    return file.openRegular(path, O_RDONLY) == 0 && file.readAll(bytes) == 0 && sha256(bytes) == hash;
}

FileReading SafeFile::look()
{
    FileReading reading;
    OpenFile file(m_calls);
    int error = file.openRegular(withoutLinks(m_path), O_RDONLY);
    if (error == 0)
        error = file.readAll(reading.bytes);
    reading.status = file.status();
    if (error == 0) {
        reading.outcome = FileReading::Outcome::Read;
        return reading;
    }
    reading.bytes.clear();
    reading.outcome = error == ENOENT ? FileReading::Outcome::Missing : FileReading::Outcome::Failed;
    if (error != ENOENT)
        reading.error = u"“%1” could not be read: %2."_s.arg(fileName(), errorWords(error));
    return reading;
}

void SafeFile::take(const FileReading &reading)
{
    m_seen = {};
    if (reading.outcome == FileReading::Outcome::Read)
        m_seen = {true, reading.status, reading.bytes};
}

FileReading SafeFile::read()
{
    FileReading reading = look();
    if (m_pending && reading.outcome == FileReading::Outcome::Read) {
        reading.bytes = *m_pending;
        m_strayJournal = false;
    } else {
        take(reading);
    }
    return reading;
}

bool SafeFile::isAsSeen()
{
    OpenFile file(m_calls);
    return m_seen.known && m_seen.content && !m_pending &&
           file.openRegular(withoutLinks(m_path), O_RDONLY) == 0 && isUntouched(m_seen.status, file.status());
}

QString SafeFile::erase()
{
    const QByteArray path = withoutLinks(m_path);
    const int error = removeFile(path);
    const QString words = u"“%1” could not be removed: %2."_s;
    if (error != 0 && error != ENOENT)
        return words.arg(fileName(), errorWords(error));
    m_seen = {};
    m_pending.reset();
    if (const int left = m_journals.erase(path); left != 0)
        return words.arg(journalPath(), errorWords(left));
    m_strayJournal = false;
    EarlierVersions versions(
        fileName(), EarlierVersions::standardFolders(m_privateFolder, QFileInfo(m_path).path()), m_calls);
    if (QString left = versions.removeAll(); !left.isEmpty())
        return left;
    return error == 0 ? QString() : words.arg(fileName(), errorWords(error));
}

int SafeFile::removeFile(const QByteArray &path)
{
    const QFileInfo info(QFile::decodeName(path));
    if (info.exists() && !info.isFile())
        return OpenFile::notRegular;
    if (m_calls.unlink(path) != 0)
        return errno;
    return syncFolder(m_calls, parentFolder(path));
}

FileWriting SafeFile::write(const QByteArray &bytes)
{
    FileWriting writing;
    const int error = save(bytes, writing.notices);
    writing.written = error == 0;
    if (error != 0) {
        writing.reason = errorWords(error);
        writing.error = u"“%1” could not be saved: %2."_s.arg(fileName(), writing.reason);
    }
    return writing;
}

int SafeFile::save(const QByteArray &bytes, QStringList &notices)
{
    Journal journal{withoutLinks(m_path), {}, sha256(bytes), bytes};
    OpenFile file(m_calls);
    bool isInPlace = false;
    int error = openForSaving(file, journal.path);
    if (error == 0)
        error = keepOtherVersion(file, notices);
    if (error == 0)
        error = keepStrayJournal(journal, notices);
    if (error == 0)
        error = file.reserve(bytes.size());
    journal.oldHash = m_seen.content ? sha256(*m_seen.content) : QByteArray();
    if (error == 0)
        error = m_journals.store(journal, isInPlace);
    if (isInPlace)
        m_pending = bytes;
    if (error == 0)
        error = overwrite(file, journal);
    return error;
}

int SafeFile::openForSaving(OpenFile &file, const QByteArray &path)
{
    const int error = file.openRegular(path, O_RDWR);
    if (error != ENOENT)
        return error;
    const int creating = file.open(path, O_RDWR | O_CREAT | O_EXCL, 0644);
    // Another program may have been quicker; its file is treated like any other then.
    if (creating != 0)
        return creating == EEXIST ? file.openRegular(path, O_RDWR) : creating;
    m_nameIsSafe = false;
    m_seen = {true, {}, QByteArray()};
    return file.takeStatus();
}

int SafeFile::keepOtherVersion(OpenFile &file, QStringList &notices)
{
    const bool untouched = m_seen.known && isUntouched(m_seen.status, file.status());
    if (untouched && m_seen.content)
        return 0;
    if (untouched) {
        // Our own torn writing. Knowing its hash only spares a needless copy after a crash.
        QByteArray torn;
        if (file.readAll(torn) == 0)
            m_seen.content = torn;
        return 0;
    }
    m_nameIsSafe = false;
    const bool isChanged = m_seen.known;
    const QString words = isChanged ? u"“%1” was changed by another program. That version was copied to %2."_s
                                    : u"“%1” held something that had not been read. It was copied to %2."_s;
    return keepUnless(m_seen.content ? QList{sha256(*m_seen.content)} : QList<QByteArray>(), file,
                      isChanged ? VersionReason::OtherProgram : VersionReason::Unread, words, notices);
}

int SafeFile::keepUnless(const QList<QByteArray> &knownHashes, OpenFile &file, VersionReason reason,
                         const QString &words, QStringList &notices)
{
    QByteArray bytes;
    if (const int error = file.readAll(bytes); error != 0)
        return error;
    if (!knownHashes.contains(sha256(bytes))) {
        const RecoveryFolder::Kept kept = m_recovery.keep(bytes, fileName(), reason);
        if (kept.error != 0)
            return kept.error;
        notices << words.arg(fileName(), kept.path);
    }
    m_seen = {true, file.status(), bytes};
    return 0;
}

int SafeFile::keepStrayJournal(const Journal &next, QStringList &notices)
{
    if (!m_strayJournal)
        return 0;
    std::optional<Journal> journal;
    const int error = m_journals.load(next.path, journal);
    if (error == ENOENT || (journal && journal->path == next.path && journal->newHash == next.newHash)) {
        m_strayJournal = false;
        return 0;
    }
    const bool isText = journal && journal->path == next.path;
    const RecoveryFolder::Kept kept =
        isText ? m_recovery.keep(journal->text, fileName(), VersionReason::Interrupted)
               : m_recovery.move(m_journals.fileFor(next.path), fileName() + u".journal"_s,
                                 VersionReason::Damaged);
    if (kept.error == 0) {
        m_strayJournal = false;
        notices << u"An earlier save of “%1” was never completed. Its text was copied to %2."_s.arg(
            fileName(), kept.path);
    }
    return kept.error;
}

int SafeFile::overwrite(OpenFile &file, const Journal &journal)
{
    int error = file.writeAll(journal.text);
    if (error == 0)
        error = file.resize(journal.text.size());
    if (error == 0)
        error = file.sync();
    if (error == 0 && !m_nameIsSafe)
        error = syncFolder(m_calls, parentFolder(journal.path));
    m_nameIsSafe = m_nameIsSafe || error == 0;
    // A status that cannot be had only makes the next save compare contents.
    const bool hasStatus = file.takeStatus() == 0;
    m_seen = {true, hasStatus ? file.status() : m_seen.status,
              error == 0 ? std::optional(journal.text) : std::nullopt};
    if (error != 0)
        return error;
    // Not synced: a journal that a power cut brings back holds what the file holds.
    m_journals.remove(journal.path);
    m_pending.reset();
    return 0;
}

} // namespace oblino
