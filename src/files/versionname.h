#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace oblino {

/// Why a version of a user's file was kept.
enum class VersionReason {
    Daily,        ///< what the file held before the first change of a day
    OtherProgram, ///< another program had changed the file, and a save replaced that
    Unread,       ///< the file held something that had not been read
    Interrupted,  ///< the text of a save that was not completed
    Damaged,      ///< the record of such a save, which cannot be read
    Quarantined,  ///< rows that cannot be read, or hold more than a task
    Conflict,     ///< tasks that were changed here and elsewhere: those from elsewhere
    Replaced,     ///< the list here before one that another program wrote took its place
    Restored,     ///< what there was before an earlier version was restored
    Rescued,      ///< a text that could not be saved when the program ended
};

/// What the name of the file tells in which a version is kept:
/// "yyyy-MM-dd HH.mm.ss[ (number)] [reason] NAME", where NAME is that of the user's file.
struct VersionName
{
    QDateTime time; ///< local, to the second
    int number = 1; ///< among those of one second
    VersionReason reason = VersionReason::Unread;

    [[nodiscard]] QString fileName(const QString &name) const;

    /// What the name `fileName` tells, or nothing where it is not that of a version of the file `name`, or of
    /// the record of a save of it.
    [[nodiscard]] static std::optional<VersionName> parse(const QString &fileName, const QString &name);
};

/// The end of a user's file name that a name made of it has room for: one may have 255 bytes, and a character
/// may take three of them.
[[nodiscard]] QString shortenedName(const QString &name);

/// The name under which the record of a save of the file `name` is kept.
[[nodiscard]] QString recordName(const QString &name);

} // namespace oblino
