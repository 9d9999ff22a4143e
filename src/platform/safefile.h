#pragma once

#include <platform/filecalls.h>
#include <platform/journalstore.h>
#include <platform/recoveryfolder.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace oblino {

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
struct SettingAside
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
    /// journal stays, and read() answers its text until a write() succeeds.
    /// @return what the user should know of it, in whole sentences; usually nothing
    [[nodiscard]] QStringList recover();

    /// Reads the whole file and remembers what was seen. Anything but a regular file fails without waiting.
    /// While a save is unfinished, a file that can be read is answered with the text of that save.
    [[nodiscard]] FileReading read();

    /// Replaces the content. When another program changed the file since it was last read or written, that
    /// version is copied into the recovery folder first. On failure the old content stays, or the new one
    /// lies complete in the journal.
    [[nodiscard]] FileWriting write(const QByteArray &bytes);

    /// Reads the whole file as it is, as read() does, but neither remembers it nor answers the text of an
    /// unfinished save.
    [[nodiscard]] FileReading look();

    /// Remembers what look() answered as read().
    void take(const FileReading &reading);

    /// Takes what was read as not read: the next write() copies it into the recovery folder first.
    void forget() { m_seen = {}; }

    /// Whether it is known what the file held when it was last read or written.
    [[nodiscard]] bool hasSeen() const { return m_seen.known && m_seen.content; }
    /// That content; empty where it is not known.
    [[nodiscard]] QByteArray lastSeen() const { return hasSeen() ? *m_seen.content : QByteArray(); }

    /// Whether a save has come no further than its journal.
    [[nodiscard]] bool isUnfinished() const { return m_pending.has_value(); }

    /// Removes the file, its journal and every version that was kept of it, rescued texts too. A link to it
    /// stays. While the file cannot be removed, nothing is.
    /// @return an error in words for the user, empty when nothing is left; a file that is missing is an error
    [[nodiscard]] QString erase();

    /// Whether the file still is, by its status, what was last read or written without a failure. Cheap.
    [[nodiscard]] bool isAsSeen();

    /// Keeps `bytes` as a version of the file, made of what it holds and cannot be read, safely on disk.
    [[nodiscard]] SettingAside setAside(const QByteArray &bytes);

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString journalPath() const;
    [[nodiscard]] QString recoveryFolder() const;

private:
    /// What is known of the file.
    struct Seen
    {
        bool known = false;                ///< the content was read, or is our own writing
        struct stat status = {};           ///< when it was last looked at
        std::optional<QByteArray> content; ///< none after a write that failed midway
    };

    [[nodiscard]] QString fileName() const;

    [[nodiscard]] int removeFile(const QByteArray &path);
    [[nodiscard]] int save(const QByteArray &bytes, QStringList &notices);
    [[nodiscard]] int openForSaving(OpenFile &file, const QByteArray &path);
    [[nodiscard]] int keepOtherVersion(OpenFile &file, QStringList &notices);
    [[nodiscard]] int keepUnless(const QList<QByteArray> &knownHashes, OpenFile &file, VersionReason reason,
                                 const QString &words, QStringList &notices);
    [[nodiscard]] int keepStrayJournal(const Journal &next, QStringList &notices);
    [[nodiscard]] int overwrite(OpenFile &file, const Journal &journal);
    [[nodiscard]] bool holds(const QByteArray &path, const QByteArray &hash);
    void finish(const Journal &journal, QStringList &notices);
    void setJournalAside(const QByteArray &path, QStringList &notices);

    QString m_path;
    QString m_privateFolder;
    FileCalls &m_calls;
    JournalStore m_journals;
    RecoveryFolder m_recovery;
    Seen m_seen;
    std::optional<QByteArray> m_pending; ///< the text of an unfinished save, which the journal holds
    bool m_nameIsSafe = false;           ///< the file's name was seen safely on disk
    bool m_strayJournal = true;          ///< a journal may be there whose text nobody has read
};

} // namespace oblino
