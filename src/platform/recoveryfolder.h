#pragma once

#include <platform/filecalls.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace oblino {

class OpenFile;

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
