#pragma once

#include <files/filecalls.h>
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

/// What came of reading a whole file.
struct FileReading
{
    enum class Outcome { Read, Missing, Failed };

    Outcome outcome = Outcome::Failed;
    QByteArray bytes;        ///< the file's content when it was read, else empty
    QString error;           ///< why it failed, in words for the user, else empty
    struct stat status = {}; ///< of the file when reading it began
};

/// What came of writing a whole file.
struct FileWriting
{
    bool written = false;
    QString error;       ///< why it was not written, in words for the user
    QString reason;      ///< the end of that sentence: what stood in the way
    QStringList notices; ///< what the user should know besides, written or not, in whole sentences
};

/// What came of setting bytes aside.
struct Quarantined
{
    QString path;  ///< the file that holds them
    QString error; ///< why there is none, in words for the user, empty when it was done
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

    /// Keeps `bytes` as a version of the file, made of what it holds and cannot be read, safely on disk.
    [[nodiscard]] Quarantined quarantine(const QByteArray &bytes);

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString journalPath() const;
    [[nodiscard]] QString recoveryFolder() const;

private:
    /// How often a save is done again when another program changes the file meanwhile.
    static constexpr int mostRounds = 5;

    /// What is known of the file.
    struct Seen
    {
        bool known = false;                ///< the content was read, or is our own writing
        struct stat status = {};           ///< when it was last looked at
        std::optional<QByteArray> content; ///< none after a write that failed midway
    };

    /// What stopped a save.
    struct Failure
    {
        int error = 0;  ///< see OpenFile
        QString folder; ///< of the program's own, where it could not be written; else it was the file

        explicit operator bool() const { return error != 0; }
    };

    [[nodiscard]] QString fileName() const;
    [[nodiscard]] EarlierVersions versions() const;
    [[nodiscard]] int removeFile(const QByteArray &path);

    [[nodiscard]] Failure save(const QByteArray &bytes, QStringList &notices);
    [[nodiscard]] Failure prepare(OpenFile &file, const Journal &next, QStringList &notices);
    [[nodiscard]] int openForSaving(OpenFile &file, const QByteArray &path);
    void keepVersionOfToday(const std::optional<QByteArray> &before, const QByteArray &after,
                            QStringList &notices);
    [[nodiscard]] Failure keepOtherVersion(OpenFile &file, QStringList &notices);
    [[nodiscard]] Failure keepStrayJournal(const Journal &next, QStringList &notices);
    [[nodiscard]] Failure noteDown(const Journal &journal, QStringList &notices);
    [[nodiscard]] int overwrite(OpenFile &file, const Journal &journal);
    [[nodiscard]] int expect(const QByteArray &content, OpenFile &file);

    void finish(const Journal &journal, QStringList &notices);
    [[nodiscard]] Failure complete(const Journal &journal, QStringList &notices);
    [[nodiscard]] Failure keepTextOf(const Journal &journal, QStringList &notices);
    void setJournalAside(const QByteArray &path, QStringList &notices);

    QString m_path;
    QString m_privateFolder;
    FileCalls &m_calls;
    JournalStore m_journals;
    RecoveryFolder m_recovery;
    Seen m_seen;
    std::optional<Journal> m_pending; ///< of an unfinished save, as it lies on disk
    QDate m_dayWithVersion;           ///< for which the file's content before its first change is kept
    bool m_nameIsSafe = false;        ///< the file's name was seen safely on disk
    bool m_strayJournal = true;       ///< a journal may be there whose text nobody has read
};

} // namespace oblino
