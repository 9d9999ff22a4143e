#include <files/safefile.h>

#include <base/clock.h>
#include <files/earlierversions.h>
#include <files/openfile.h>

#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

FileWriting SafeFile::write(const QByteArray &bytes)
{
    FileWriting writing;
    Failure failure{OpenFile::changed, {}};
    for (int round = 0; failure.error == OpenFile::changed && round < mostRounds; ++round)
        failure = save(bytes, writing.notices);
    writing.written = !failure;
    if (!failure)
        return writing;
    const QString why = errorMessage(failure.error);
    if (failure.folder.isEmpty()) {
        writing.reason = why;
        writing.error = u"“%1” could not be saved: %2."_s.arg(fileName(), why);
    } else {
        writing.reason = u"%1 in “%2”"_s.arg(why, failure.folder);
        writing.error = u"“%1” could not be saved, as “%2” could not be written: %3."_s.arg(
            fileName(), failure.folder, why);
    }
    return writing;
}

SafeFile::Failure SafeFile::save(const QByteArray &bytes, QStringList &notices)
{
    Journal journal{resolveSymlinks(m_path), std::nullopt, bytes};
    OpenFile file(m_calls);
    const Failure preparing = prepare(file, journal, notices);
    journal.old = m_seen.content;
    // Where the file cannot be had, the text is at least safe in the journal.
    const Failure noting = noteDown(journal, notices);
    if (preparing || noting)
        return preparing ? preparing : noting;
    return {overwrite(file, journal), {}};
}

SafeFile::Failure SafeFile::prepare(OpenFile &file, const Journal &next, QStringList &notices)
{
    const std::optional<QByteArray> before = m_seen.content;
    if (const int error = openForSaving(file, next.path); error != 0)
        return {error, {}};
    keepVersionOfToday(before, next.text, notices);
    if (Failure failure = keepOtherVersion(file, notices))
        return failure;
    return {file.reserve(next.text.size()), {}};
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
    return file.refreshStatus();
}

void SafeFile::keepVersionOfToday(const std::optional<QByteArray> &before, const QByteArray &after,
                                  QStringList &notices)
{
    const QDate day = today();
    if (m_dayWithVersion == day || before == after)
        return;
    EarlierVersions all = versions();
    const bool isThere = std::ranges::any_of(all.list(), [&](const EarlierVersion &version) {
        return version.reason == VersionReason::Daily && version.time.date() == day;
    });
    if (before && !before->isEmpty() && !isThere) {
        if (const QString error = all.keep(*before, VersionReason::Daily); !error.isEmpty()) {
            notices << u"No version of “%1” was kept for today. %2"_s.arg(fileName(), error);
            return;
        }
    }
    m_dayWithVersion = day;
    all.prune(day);
}

SafeFile::Failure SafeFile::keepOtherVersion(OpenFile &file, QStringList &notices)
{
    QByteArray bytes;
    if (const int error = file.readAll(bytes); error != 0)
        return {error, {}};
    using enum Journal::State;
    const Journal::State state = m_pending ? m_pending->stateOf(bytes) : Other;
    const bool isOurs =
        m_seen.content ? bytes == *m_seen.content : state == Old || state == New || state == Torn;
    if (!isOurs) {
        const RecoveryFolder::Kept kept = m_recovery.keep(
            bytes, fileName(), m_seen.known ? VersionReason::OtherProgram : VersionReason::Unread);
        if (kept.error != 0)
            return {kept.error, m_recovery.path()};
        const QString words = m_seen.known
                                  ? u"“%1” was changed by another program. That version was copied to %2."_s
                                  : u"“%1” held something that had not been read. It was copied to %2."_s;
        notices << words.arg(fileName(), kept.path);
    }
    m_nameIsSafe = m_nameIsSafe && isSameFile(m_seen.status, file.status());
    m_seen = {true, file.status(), bytes};
    return {};
}

SafeFile::Failure SafeFile::noteDown(const Journal &journal, QStringList &notices)
{
    if (Failure failure = keepStrayJournal(journal, notices))
        return failure;
    bool isInPlace = false;
    const int error = m_journals.store(journal, isInPlace);
    if (isInPlace)
        m_pending = journal;
    return {error, error != 0 ? m_privateFolder : QString()};
}

SafeFile::Failure SafeFile::keepStrayJournal(const Journal &next, QStringList &notices)
{
    if (!m_strayJournal)
        return {};
    std::optional<Journal> journal;
    const int error = m_journals.load(next.path, journal);
    const bool isText = journal && journal->path == next.path;
    if (error == ENOENT || (isText && journal->text == next.text)) {
        m_strayJournal = false;
        return {};
    }
    const RecoveryFolder::Kept kept =
        isText ? m_recovery.keep(journal->text, fileName(), VersionReason::Interrupted)
               : m_recovery.move(m_journals.fileFor(next.path), fileName() + u".journal"_s,
                                 VersionReason::Damaged);
    if (kept.error != 0)
        return {kept.error, m_recovery.path()};
    m_strayJournal = false;
    notices << u"An earlier save of “%1” was never completed. Its text was copied to %2."_s.arg(fileName(),
                                                                                                kept.path);
    return {};
}

int SafeFile::overwrite(OpenFile &file, const Journal &journal)
{
    if (const int error = expect(*m_seen.content, file); error != 0)
        return error;
    int error = file.writeAll(journal.text);
    // What another program lengthens meanwhile is not to be cut before it has been looked at.
    if (error == 0 && file.status().st_size >= journal.text.size())
        error = file.resize(journal.text.size());
    if (error == 0)
        error = file.sync();
    if (error == 0 && !m_nameIsSafe)
        error = syncDirectory(m_calls, parentFolder(journal.path));
    m_nameIsSafe = m_nameIsSafe || error == 0;
    // A status that cannot be had only makes the next save compare contents.
    const bool hasStatus = file.refreshStatus() == 0;
    if (error == 0)
        error = expect(journal.text, file);
    m_seen = {true, hasStatus ? file.status() : m_seen.status,
              error == 0 ? std::optional(journal.text) : std::nullopt};
    if (error != 0)
        return error;
    // Not synced: a journal that a power cut brings back holds what the file holds.
    m_journals.remove(journal.path);
    m_pending.reset();
    return 0;
}

/// Looks whether the open file holds `content`, and the path still leads to it.
int SafeFile::expect(const QByteArray &content, OpenFile &file)
{
    struct stat status = {};
    int error = file.expect(content);
    if (error == 0)
        error = statusOfFile(m_calls, QFile::encodeName(m_path), status);
    if (error == ENOENT || (error == 0 && !isSameFile(status, file.status())))
        error = OpenFile::changed;
    return error;
}

} // namespace oblino
