#pragma once

#include <files/filecalls.h>
#include <files/versionname.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace oblino {

class OpenFile;

/// A folder in which versions of the user's files are kept that would otherwise be lost. What is kept is
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
    /// A version that lies here.
    struct Version
    {
        QString path;
        VersionName name; ///< with the time of the file where the name tells none
    };

    RecoveryFolder(QString path, FileCalls &calls);

    [[nodiscard]] QString path() const { return m_path; }

    /// Keeps `bytes` as a new file named after `name`, the time and the reason.
    [[nodiscard]] Kept keep(const QByteArray &bytes, const QString &name, VersionReason reason);

    /// Moves `file` here, under a new name made of `name`, the time and the reason.
    [[nodiscard]] Kept move(const QByteArray &file, const QString &name, VersionReason reason);

    /// Every version of the file `name`, newest first. Where others may write to the folder, only files of
    /// this user count.
    [[nodiscard]] QList<Version> versions(const QString &name) const;

private:
    [[nodiscard]] Kept create(OpenFile &file, const QString &name, VersionReason reason);

    QString m_path;
    FileCalls &m_calls;
};

/// Whether the file `path` can be taken for one of this user's: a regular one and no link, and the user's own
/// where others may write to its folder.
[[nodiscard]] bool isOwnFile(const QString &path);

} // namespace oblino
