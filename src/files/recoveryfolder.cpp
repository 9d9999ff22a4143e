#include <files/recoveryfolder.h>

#include <base/clock.h>
#include <files/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace oblino {

RecoveryFolder::RecoveryFolder(QString path, FileCalls &calls)
    : m_path(std::move(path))
    , m_calls(calls)
{
}

RecoveryFolder::Kept RecoveryFolder::create(OpenFile &file, const QString &name, VersionReason reason)
{
    constexpr int mostInOneSecond = 1000;
    VersionName version{now(), 1, reason};
    Kept kept{EEXIST, {}};
    for (; kept.error == EEXIST && version.number <= mostInOneSecond; ++version.number) {
        kept.path = m_path + u'/' + version.fileName(name);
        kept.error = file.openPrivate(QFile::encodeName(kept.path), O_EXCL);
    }
    if (kept.error != 0 && file.isOpen())
        m_calls.unlink(QFile::encodeName(kept.path)); // made, but of no use
    return kept;
}

RecoveryFolder::Kept RecoveryFolder::keep(const QByteArray &bytes, const QString &name, VersionReason reason)
{
    OpenFile file(m_calls);
    Kept kept = create(file, name, reason);
    if (kept.error != 0)
        return kept;
    kept.error = file.writeAll(bytes);
    if (kept.error == 0)
        kept.error = file.sync();
    if (kept.error == 0)
        kept.error = syncDirectory(m_calls, QFile::encodeName(m_path));
    if (kept.error != 0)
        m_calls.unlink(QFile::encodeName(kept.path));
    return kept;
}

RecoveryFolder::Kept RecoveryFolder::move(const QByteArray &file, const QString &name, VersionReason reason)
{
    // rename() replaces what is in its way, so the new name is taken first.
    OpenFile placeholder(m_calls);
    Kept kept = create(placeholder, name, reason);
    if (kept.error != 0)
        return kept;
    const QByteArray to = QFile::encodeName(kept.path);
    kept.error = renameFile(m_calls, file, to);
    if (kept.error != 0) {
        m_calls.unlink(to);
        return kept;
    }
    kept.error = syncDirectory(m_calls, QFile::encodeName(m_path));
    if (kept.error == 0)
        kept.error = syncDirectory(m_calls, parentFolder(file));
    return kept;
}

QList<RecoveryFolder::Version> RecoveryFolder::versions(const QString &name) const
{
    QList<Version> versions;
    for (const QFileInfo &file : QDir(m_path).entryInfoList(QDir::Files | QDir::Hidden)) {
        std::optional<VersionName> version = VersionName::parse(file.fileName(), name);
        if (!version || !isOwnFile(file.filePath()))
            continue;
        if (!version->time.isValid())
            version->time = file.lastModified();
        versions << Version{file.filePath(), *version};
    }
    std::ranges::stable_sort(versions, [](const Version &a, const Version &b) {
        return std::pair(a.name.time, a.name.number) > std::pair(b.name.time, b.name.number);
    });
    return versions;
}

bool isOwnFile(const QString &path)
{
    const QByteArray file = QFile::encodeName(path);
    struct stat status = {};
    struct stat folder = {};
    if (::lstat(file.constData(), &status) != 0 || ::stat(parentFolder(file).constData(), &folder) != 0)
        return false;
    const bool othersMayWrite = (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return S_ISREG(status.st_mode) && (status.st_uid == ::geteuid() || !othersMayWrite);
}

} // namespace oblino
