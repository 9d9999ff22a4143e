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
    SetAside,     ///< rows that cannot be read, or hold more than a task
    Conflict,     ///< tasks that were changed here and elsewhere: those from elsewhere
    Replaced,     ///< the list here before one that another program wrote took its place
    Restored,     ///< what there was before an earlier version was restored
    Rescued,      ///< a text that could not be saved when the program ended
};

/// What the name of the file tells in which a version is kept:
/// "yyyy-MM-dd HH.mm.ss[ (number)] [reason] NAME", where NAME is that of the user's file.
struct VersionName
{
    QDateTime time;                               ///< local, to the second; invalid where the name tells none
    int number = 1;                               ///< among those of one second
    VersionReason reason = VersionReason::Unread; ///< OtherProgram where the name tells none

    [[nodiscard]] QString fileName(const QString &name) const;

    /// What the name `fileName` tells, or nothing where it is not that of a version of the file `name`. Files
    /// of earlier releases count too: those without a reason, and "set-aside NAME".
    [[nodiscard]] static std::optional<VersionName> parse(const QString &fileName, const QString &name);
};

} // namespace oblino
