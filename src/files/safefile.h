#pragma once

#include <files/filecalls.h>
#include <files/fileerror.h>
#include <files/filereading.h>
#include <files/journalstore.h>
#include <files/recoveryfolder.h>

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

namespace oblino {

class EarlierVersions;
class OpenFile;

/// What came of writing a whole file.
struct FileWriting
{
    bool written = false;
    QString error;       ///< why it was not written, in words for the user
    QString reason;      ///< the end of that sentence: what stood in the way
    QStringList notices; ///< what the user should know besides, written or not, in whole sentences
};

/// What came of keeping as a version what cannot be read.
struct Quarantine
{
    QString path;   ///< of that version
    QString error;  ///< why there is none, in words for the user, empty when it was done
    QString reason; ///< the end of that sentence
};

/// One file of the user's, rewritten whole and in place, so that its inode, links, owner and mode stay. A
/// crash, a full disk or a power cut at any moment leaves the old content or the new one: before the file is
/// touched, the new content lies complete in a journal in the program's private folder, and recover() brings
/// an interrupted save to its end.
class SafeFile
{
public:
    /// @param path           the user's file; symbolic links are followed
    /// @param privateFolder  where journal and recovery copies go; made (0700) when first needed
    SafeFile(QString path, const QString &privateFolder, FileCalls &calls = FileCalls::posix());

    /// Ends a save that a crash cut short. To be called once, before the first read(). Where that fails, the
    /// journal stays, and read() answers its text until a write() succeeds. A file that another program wrote
    /// meanwhile stays as it is; the text of the save becomes an earlier version.
    /// @return what the user should know of it, in whole sentences; usually nothing
    [[nodiscard]] QStringList recover();

    /// Reads the whole file and remembers what was seen. Anything but a regular file fails without waiting.
    /// While a save is unfinished, a file that still holds what that save found or left is answered with the
    /// text of that save.
    [[nodiscard]] FileReading read();

    /// Replaces the content. When another program changed the file since it was last read or written, or does
    /// so meanwhile, that version is copied into the recovery folder first; so is, once a day, what was last
    /// seen. On failure the old content stays or the new one lies complete in the journal, if that can be
    /// written, and the next recover() tries again.
    [[nodiscard]] FileWriting write(const QByteArray &bytes);

    /// Reads the whole file as it is, as read() does, but neither remembers it nor answers the text of an
    /// unfinished save.
    [[nodiscard]] FileReading look();

    /// Remembers what look() answered as read().
    void take(const FileReading &reading);

    /// Takes what was read as not read: the next write() copies it into the recovery folder first.
    void invalidate() { m_seen = {}; }

    /// Whether it is known what the file held when it was last read or written.
    [[nodiscard]] bool hasSeen() const { return m_seen.known && m_seen.content; }
    /// That content; empty where it is not known.
    [[nodiscard]] QByteArray lastSeen() const { return hasSeen() ? *m_seen.content : QByteArray(); }

    /// Whether a save has come no further than its journal.
    [[nodiscard]] bool isUnfinished() const { return m_pending.has_value(); }
    /// Whether such a save accounts for that content: it found it, or left it when it was cut off.
    [[nodiscard]] bool isOfUnfinished(const QByteArray &content) const
    {
        return m_pending && m_pending->stateOf(content) != Journal::State::Other;
    }

    /// Removes the file, its journal and every version that was kept of it, rescued texts too. A link to it
    /// stays. While the file cannot be removed, nothing is.
    /// @return an error in words for the user, empty when nothing is left; a file that is missing is an error
    [[nodiscard]] QString erase();

    /// Whether the file still is, by its status, what was last read or written without a failure. Cheap.
    [[nodiscard]] bool isAsSeen();

    /// Keeps `bytes`, which the file holds and nobody can read, as a version of it, and flushes that to disk.
    [[nodiscard]] Quarantine quarantine(const QByteArray &bytes);
    /// Makes a version of the whole file, which is gone then, without reading it.
    [[nodiscard]] Quarantine quarantineFile();

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString journalPath() const;

private:
    /// What is known of the file.
    struct Seen
    {
        bool known = false;                ///< the content was read, or is our own writing
        struct stat status = {};           ///< when it was last looked at
        std::optional<QByteArray> content; ///< none after a write that failed midway
    };

    [[nodiscard]] QString fileName() const;
    [[nodiscard]] EarlierVersions versions() const;
    void removeItself(const QByteArray &path);

    void save(const QByteArray &bytes);
    [[nodiscard]] OpenFile prepare(const Journal &next);
    [[nodiscard]] OpenFile openForSaving(const QByteArray &path);
    void keepVersionOfToday(const std::optional<QByteArray> &before, const QByteArray &after);
    void keepOtherVersion(const OpenFile &file);
    void keepStrayJournal(const Journal &next);
    void noteDown(const Journal &journal);
    void overwrite(OpenFile &file, const Journal &journal);
    void expect(const QByteArray &content, const OpenFile &file);

    void finish(const Journal &journal);
    void complete(const Journal &journal);
    void keepTextOf(const Journal &journal);
    void quarantineJournal(const QByteArray &path);

    QString m_path;
    QString m_privateFolder;
    FileCalls &m_calls;
    JournalStore m_journals;
    RecoveryFolder m_recovery;
    QStringList m_notices; // of the operation that goes on
    Seen m_seen;
    std::optional<Journal> m_pending; ///< of an unfinished save, as it lies on disk
    QDate m_dayWithVersion;           ///< for which the file's content before its first change is kept
    bool m_nameIsSafe = false;        ///< the file's name was flushed
    bool m_strayJournal = true;       ///< a journal may be there whose text nobody has read
};

} // namespace oblino
