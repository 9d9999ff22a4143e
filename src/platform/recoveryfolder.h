#pragma once

#include <platform/filecalls.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace oblino {

class OpenFile;

/// Why a version of a user's file was kept.
enum class VersionReason {
    Daily,        ///< what the file held before the first change of a day
    OtherProgram, ///< another program had changed the file, and a save replaced that
    Unread,       ///< the file held something that had not been read
    Interrupted,  ///< the text of a save that was not completed
    Damaged,      ///< the record of such a save, which cannot be read
    SetAside,     ///< rows that cannot be read, or hold more than a task
    Conflict,     ///< tasks that were changed here and elsewhere: those from elsewhere
    Replaced,     ///< the list here before one that another program wrote took its place
    Restored,     ///< what there was before an earlier version was restored
    Rescued,      ///< a text that could not be saved when the program ended
};

/// The folder in which versions of the user's files are kept that would otherwise be lost. What is kept is
/// safely on disk when a function returns, is readable by the user alone, and is never overwritten.
class RecoveryFolder
{
public:
    /// Where something was kept, or the error (see OpenFile) that prevented it.
    struct Kept
    {
        int error = 0;
        QString path;
    };

    RecoveryFolder(QString path, FileCalls &calls);

    [[nodiscard]] QString path() const { return m_path; }
    /// The file to which append() appends what belongs to `name`.
    [[nodiscard]] QString asidePath(const QString &name) const;

    /// Keeps `bytes` as a new file named after `name` and the time.
    [[nodiscard]] Kept keep(const QByteArray &bytes, const QString &name);

    /// Moves `file` here, under a new name made of `name` and the time.
    [[nodiscard]] Kept move(const QByteArray &file, const QString &name);

    /// Appends `bytes` to the file of asidePath() under a heading line of the time and `name`.
    /// @return 0 or the error
    [[nodiscard]] int append(const QByteArray &bytes, const QString &name);

    /// Removes everything that was kept under `name`.
    /// @return 0 or the error
    [[nodiscard]] int erase(const QString &name);

private:
    [[nodiscard]] QStringList filesOf(const QString &name) const;
    [[nodiscard]] Kept create(OpenFile &file, const QString &name);

    QString m_path;
    FileCalls &m_calls;
};

} // namespace oblino
