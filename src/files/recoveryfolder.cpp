#include <files/recoveryfolder.h>

#include <base/clock.h>
#include <files/fileerror.h>

#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

RecoveryFolder::RecoveryFolder(QString path, FileCalls &calls)
    : m_path(std::move(path))
    , m_calls(calls)
{
}

RecoveryFolder::NewFile RecoveryFolder::create(const QString &name, VersionReason reason)
{
    constexpr int mostInOneSecond = 1000;
    for (VersionName version{now(), 1, reason};; ++version.number) {
        const QString path = m_path + u'/' + version.fileName(name);
        try {
            return {path, OpenFile::inPrivateFolder(m_calls, QFile::encodeName(path), O_EXCL)};
        } catch (const FileError &error) {
            if (error.code != EEXIST || version.number == mostInOneSecond)
                throw;
        }
    }
}

QString RecoveryFolder::keep(const QByteArray &bytes, const QString &name, VersionReason reason)
{
    return inFolder(m_path, [&] {
        NewFile made = create(name, reason);
        try {
            made.file.writeAll(bytes);
            made.file.sync();
            syncDirectory(m_calls, QFile::encodeName(m_path));
        } catch (const FileError &) {
            m_calls.unlink(QFile::encodeName(made.path));
            throw;
        }
        return made.path;
    });
}

QString RecoveryFolder::move(const QByteArray &file, const QString &name, VersionReason reason)
{
    return inFolder(m_path, [&] {
        // rename() replaces what is in its way, so the new name is taken first.
        QString path = create(name, reason).path;
        const QByteArray to = QFile::encodeName(path);
        try {
            renameFile(m_calls, file, to);
        } catch (const FileError &) {
            m_calls.unlink(to);
            throw;
        }
        syncDirectory(m_calls, QFile::encodeName(m_path));
        syncDirectory(m_calls, parentFolder(file));
        return path;
    });
}

} // namespace oblino
