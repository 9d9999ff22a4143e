#pragma once

#include <files/filecalls.h>
#include <files/openfile.h>
#include <files/versionname.h>

#include <QByteArray>
#include <QString>

namespace oblino {

/// A folder in which versions of the user's files are kept that would otherwise be lost. What is kept is
/// flushed to disk when a function returns, is readable by the user alone, and is never overwritten. What
/// fails throws FileError.
class RecoveryFolder
{
public:
    RecoveryFolder(QString path, FileCalls &calls);

    /// Keeps `bytes` as a new file named after `name`, the time and the reason.
    /// @return the path of that file
    QString keep(const QByteArray &bytes, const QString &name, VersionReason reason);

    /// Moves `file` here, under a new name made of `name`, the time and the reason.
    /// @return its path here
    QString move(const QByteArray &file, const QString &name, VersionReason reason);

private:
    struct NewFile
    {
        QString path;
        OpenFile file;
    };

    [[nodiscard]] NewFile create(const QString &name, VersionReason reason);

    QString m_path;
    FileCalls &m_calls;
};

} // namespace oblino
