#include <files/safefile.h>

#include <base/clock.h>
#include <files/earlierversions.h>
#include <files/openfile.h>

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

FileWriting SafeFile::write(const QByteArray &bytes)
{
    FileWriting writing;
    const auto failure = failureOfRounds([&] { save(bytes); });
    writing.written = !failure;
    writing.notices = std::exchange(m_notices, {});
    if (!failure)
        return writing;
    if (failure->folder.isEmpty()) {
        writing.reason = failure->message();
        writing.error = u"“%1” could not be saved: %2."_s.arg(fileName(), writing.reason);
    } else {
        writing.reason = u"%1 in “%2”"_s.arg(failure->message(), failure->folder);
        writing.error = u"“%1” could not be saved, as %2"_s.arg(fileName(), failure->notWritable());
    }
    return writing;
}

void SafeFile::save(const QByteArray &bytes)
{
    Journal journal{resolveSymlinks(m_path), std::nullopt, bytes};
    std::optional<OpenFile> file;
    const auto obstacle = failureOf([&] { file.emplace(prepare(journal)); });
    journal.old = m_seen.content;
    // Where the file cannot be had, the text is at least safe in the journal.
    const auto unnoted = failureOf([&] { noteDown(journal); });
    if (obstacle || unnoted)
        throw obstacle ? *obstacle : *unnoted;
    overwrite(*file, journal);
}

OpenFile SafeFile::prepare(const Journal &next)
{
    const std::optional<QByteArray> before = m_seen.content;
    OpenFile file = openForSaving(next.path);
    keepVersionOfToday(before, next.text);
    keepOtherVersion(file);
    file.reserve(next.text.size());
    return file;
}

OpenFile SafeFile::openForSaving(const QByteArray &path)
{
    const auto open = [&] { return OpenFile::regular(m_calls, path, O_RDWR); };
    try {
        return open();
    } catch (const FileError &error) {
        if (error.code != ENOENT)
            throw;
    }
    try {
        OpenFile created(m_calls, path, O_RDWR | O_CREAT | O_EXCL, 0644);
        m_nameIsSafe = false;
        m_seen = {true, {}, QByteArray()};
        created.refreshStatus();
        return created;
    } catch (const FileError &error) {
        // Another program may have been quicker; its file is treated like any other then.
        if (error.code != EEXIST)
            throw;
    }
    return open();
}

void SafeFile::keepVersionOfToday(const std::optional<QByteArray> &before, const QByteArray &after)
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
            m_notices << u"No version of “%1” was kept for today. %2"_s.arg(fileName(), error);
            return;
        }
    }
    m_dayWithVersion = day;
    all.prune(day);
}

void SafeFile::keepOtherVersion(const OpenFile &file)
{
    using enum Journal::State;
    const QByteArray bytes = file.readAll();
    const Journal::State state = m_pending ? m_pending->stateOf(bytes) : Other;
    const bool isOurs =
        m_seen.content ? bytes == *m_seen.content : state == Old || state == New || state == Torn;
    if (!isOurs) {
        const QString words = m_seen.known
                                  ? u"“%1” was changed by another program. That version was copied to %2."_s
                                  : u"“%1” held something that had not been read. It was copied to %2."_s;
        const auto reason = m_seen.known ? VersionReason::OtherProgram : VersionReason::Unread;
        m_notices << words.arg(fileName(), m_recovery.keep(bytes, fileName(), reason));
    }
    m_nameIsSafe = m_nameIsSafe && isSameFile(m_seen.status, file.status());
    m_seen = {true, file.status(), bytes};
}

void SafeFile::noteDown(const Journal &journal)
{
    keepStrayJournal(journal);
    m_journals.store(journal);
    m_pending = journal;
    m_journals.syncNames();
}

void SafeFile::keepStrayJournal(const Journal &next)
{
    if (!m_strayJournal)
        return;
    std::optional<Journal> journal;
    const auto unreadable = failureOf([&] { journal = m_journals.load(next.path); });
    const bool isText = journal && journal->path == next.path;
    if (unreadable || (journal && !(isText && journal->text == next.text))) {
        const QString kept = isText ? m_recovery.keep(journal->text, fileName(), VersionReason::Interrupted)
                                    : m_recovery.move(m_journals.fileFor(next.path), recordName(fileName()),
                                                      VersionReason::Damaged);
        m_notices << u"An earlier save of “%1” was never completed. Its text was copied to %2."_s.arg(
            fileName(), kept);
    }
    m_strayJournal = false;
}

void SafeFile::overwrite(OpenFile &file, const Journal &journal)
{
    expect(*m_seen.content, file);
    m_seen.content.reset(); // unknown until all of this has worked
    file.writeAll(journal.text);
    // What another program lengthens meanwhile is not to be cut before it has been looked at.
    if (file.status().st_size >= journal.text.size())
        file.resize(journal.text.size());
    file.sync();
    if (!m_nameIsSafe)
        syncDirectory(m_calls, parentFolder(journal.path));
    m_nameIsSafe = true;
    // A status that cannot be had only makes the next save compare contents.
    static_cast<void>(failureOf([&] { file.refreshStatus(); }));
    expect(journal.text, file);
    m_seen = {true, file.status(), journal.text};
    // Not synced: a journal that a power cut brings back holds what the file holds.
    m_journals.remove(journal.path);
    m_pending.reset();
}

/// Looks whether the open file holds `content`, and the path still leads to it.
void SafeFile::expect(const QByteArray &content, const OpenFile &file)
{
    const bool isHeld = file.holds(content);
    const auto status = isHeld ? statusOfFile(m_calls, QFile::encodeName(m_path)) : std::nullopt;
    if (!status || !isSameFile(*status, file.status()))
        throw FileError{FileError::changed, {}};
}

} // namespace oblino
