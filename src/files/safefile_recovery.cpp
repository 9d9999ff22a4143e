#include <files/safefile.h>

#include <files/openfile.h>

#include <cerrno>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

QStringList SafeFile::recover()
{
    QStringList notices;
    const QByteArray path = resolveSymlinks(m_path);
    m_journals.removeUnfinished(path);
    std::optional<Journal> journal;
    const int error = m_journals.load(path, journal);
    if (error == ENOENT) {
        m_strayJournal = false;
    } else if (error != 0) {
        notices << u"An interrupted save of “%1” could not be looked at: %2."_s.arg(fileName(),
                                                                                    errorMessage(error));
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
        notices << u"The damaged record of an interrupted save of “%1” could not be moved away. %2"_s.arg(
            fileName(), notWritable(m_recovery.path(), kept.error));
    }
}

void SafeFile::finish(const Journal &journal, QStringList &notices)
{
    Failure failure{OpenFile::changed, {}};
    for (int round = 0; failure.error == OpenFile::changed && round < mostRounds; ++round)
        failure = complete(journal, notices);
    if (!failure) {
        m_strayJournal = false;
        return;
    }
    m_pending = journal;
    const QString again = u" It will be tried again at the next start."_s;
    const QString reason =
        failure.folder.isEmpty()
            ? u": %1."_s.arg(errorMessage(failure.error))
            : u", as “%1” could not be written: %2."_s.arg(failure.folder, errorMessage(failure.error));
    notices << u"An interrupted save of “%1” could not be completed"_s.arg(fileName()) + reason + again;
}

SafeFile::Failure SafeFile::complete(const Journal &journal, QStringList &notices)
{
    m_seen = {};
    OpenFile file(m_calls);
    const int opening = openForSaving(file, journal.path);
    if (opening != 0 && file.openRegular(journal.path, O_RDONLY) != 0)
        return {opening, {}};
    QByteArray found;
    if (const int error = file.readAll(found); error != 0)
        return {error, {}};
    const Journal::State state = journal.stateOf(found);
    if (state == Journal::State::Other)
        return keepTextOf(journal, notices);
    if (opening != 0) {
        if (state == Journal::State::New)
            m_journals.remove(journal.path);
        return {state == Journal::State::New ? 0 : opening, {}};
    }
    m_seen = {true, file.status(), found};
    if (state == Journal::State::CutShort && !found.isEmpty()) {
        const RecoveryFolder::Kept kept = m_recovery.keep(found, fileName(), VersionReason::OtherProgram);
        if (kept.error != 0)
            return {kept.error, m_recovery.path()};
        notices << u"A save of “%1” was interrupted and has been completed. The file had been cut short "
                   u"meanwhile; what was left of it was copied to %2."_s.arg(fileName(), kept.path);
    }
    if (const int error = file.reserve(journal.text.size()); error != 0)
        return {error, {}};
    if (const int error = m_journals.syncNames(); error != 0)
        return {error, m_privateFolder};
    // Even a file that seems to hold the new text is written again: when syncing it failed, it does so in
    // memory only, and syncing once more would not help.
    return {overwrite(file, journal), {}};
}

SafeFile::Failure SafeFile::keepTextOf(const Journal &journal, QStringList &notices)
{
    const RecoveryFolder::Kept kept = m_recovery.keep(journal.text, fileName(), VersionReason::Interrupted);
    if (kept.error != 0)
        return {kept.error, m_recovery.path()};
    m_journals.remove(journal.path);
    notices << u"“%1” has been changed by another program since a save of it was interrupted, and stays as "
               u"it is. The text of that save was copied to %2."_s.arg(fileName(), kept.path);
    return {};
}

} // namespace oblino
