#include <files/safefile.h>

#include <files/openfile.h>

#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

QStringList SafeFile::recover()
{
    const QByteArray path = resolveSymlinks(m_path);
    m_journals.removeUnfinished(path);
    try {
        const std::optional<Journal> journal = m_journals.load(path);
        if (!journal)
            m_strayJournal = false;
        else if (journal->path == path)
            finish(*journal);
    } catch (const FileError &error) {
        if (error.code == FileError::damaged)
            quarantineJournal(path);
        else
            m_notices << u"An interrupted save of “%1” could not be looked at: %2."_s.arg(fileName(),
                                                                                          error.message());
    }
    return std::exchange(m_notices, {});
}

void SafeFile::quarantineJournal(const QByteArray &path)
{
    try {
        const QString kept =
            m_recovery.move(m_journals.fileFor(path), recordName(fileName()), VersionReason::Damaged);
        m_strayJournal = false;
        m_notices << u"The record of an interrupted save of “%1” is damaged. It was moved to %2."_s.arg(
            fileName(), kept);
    } catch (const FileError &error) {
        m_notices << u"The damaged record of an interrupted save of “%1” could not be moved away. %2"_s.arg(
            fileName(), error.notWritable());
    }
}

void SafeFile::finish(const Journal &journal)
{
    const auto failure = failureOfRounds([&] { complete(journal); });
    if (!failure) {
        m_strayJournal = false;
        return;
    }
    m_pending = journal;
    const QString reason = failure->folder.isEmpty() ? u": %1."_s.arg(failure->message())
                                                     : u", as %1"_s.arg(failure->notWritable());
    m_notices << u"An interrupted save of “%1” could not be completed"_s.arg(fileName()) + reason +
                     u" It will be tried again at the next start."_s;
}

void SafeFile::complete(const Journal &journal)
{
    m_seen = {};
    std::optional<OpenFile> file;
    const auto obstacle = failureOf([&] { file.emplace(openForSaving(journal.path)); });
    if (obstacle && failureOf([&] { file.emplace(OpenFile::regular(m_calls, journal.path, O_RDONLY)); }))
        throw *obstacle;
    const QByteArray found = file->readAll();
    const Journal::State state = journal.stateOf(found);
    if (state == Journal::State::Other)
        return keepTextOf(journal);
    if (obstacle && state != Journal::State::New)
        throw *obstacle;
    if (obstacle)
        return m_journals.remove(journal.path);
    m_seen = {true, file->status(), found};
    if (state == Journal::State::CutShort && !found.isEmpty()) {
        m_notices << u"A save of “%1” was interrupted and has been completed. The file had been cut short "
                     u"meanwhile; what was left of it was copied to %2."_s.arg(
                         fileName(), m_recovery.keep(found, fileName(), VersionReason::OtherProgram));
    }
    file->reserve(journal.text.size());
    m_journals.syncNames();
    // Even a file that seems to hold the new text is written again: when syncing it failed, it does so in
    // memory only, and syncing once more would not help.
    overwrite(*file, journal);
}

void SafeFile::keepTextOf(const Journal &journal)
{
    const QString kept = m_recovery.keep(journal.text, fileName(), VersionReason::Interrupted);
    m_journals.remove(journal.path);
    m_notices << u"“%1” has been changed by another program since a save of it was interrupted, and stays as "
                 u"it is. The text of that save was copied to %2."_s.arg(fileName(), kept);
}

} // namespace oblino
