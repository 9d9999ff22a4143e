#include <files/earlierversions.h>

#include <files/fileerror.h>
#include <files/openfile.h>
#include <files/recoveryfolder.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

QString stateFolder()
{
    const QString base = qEnvironmentVariable("XDG_STATE_HOME");
    // A relative path there is to be ignored.
    return (QDir::isAbsolutePath(base) ? base : QDir::homePath() + u"/.local/state"_s) + u"/oblino"_s;
}

// Whether the file can be taken for one of this user's: a regular one and no link, and the user's own where
// others may write to its folder.
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

} // namespace

EarlierVersions::EarlierVersions(QString name, QStringList folders, FileCalls &calls)
    : m_name(std::move(name))
    , m_folders(std::move(folders))
    , m_calls(calls)
{
}

QStringList EarlierVersions::standardFolders(const QString &privateFolder, const QString &documentsFolder)
{
    QStringList folders = {QDir(privateFolder).absoluteFilePath(u"recovery"_s)};
    // One that is away is not to be made: what lay in it afterwards would be hidden by the real one.
    if (!documentsFolder.isEmpty() && QFileInfo(documentsFolder).isDir())
        folders << QDir(documentsFolder).absolutePath();
    folders << stateFolder() << QDir::tempPath();
    folders.removeDuplicates();
    return folders;
}

QList<EarlierVersion> EarlierVersions::list() const
{
    QList<std::pair<EarlierVersion, int>> found;
    for (const QString &folder : m_folders) {
        const bool takesAll = folder == m_folders.first();
        for (const QFileInfo &file : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden)) {
            const std::optional<VersionName> name = VersionName::parse(file.fileName(), m_name);
            const bool isWanted = name && (takesAll || name->reason == VersionReason::Rescued);
            if (isWanted && isOwnFile(file.filePath()))
                found.append({{file.filePath(), name->time, name->reason}, name->number});
        }
    }
    std::ranges::stable_sort(found, std::ranges::greater(), [](const auto &version) {
        return std::pair(version.first.time, version.second);
    });
    QList<EarlierVersion> versions;
    for (const auto &[version, number] : std::as_const(found))
        versions += version;
    return versions;
}

QList<EarlierVersion> EarlierVersions::rescued() const
{
    QList<EarlierVersion> versions = list();
    versions.removeIf([](const EarlierVersion &version) { return version.reason != VersionReason::Rescued; });
    return versions;
}

FileReading EarlierVersions::read(const EarlierVersion &version) const
{
    if (QFileInfo::exists(version.path) && !isOwnFile(version.path))
        return failedReading(version.path, {EPERM, {}});
    return readFile(m_calls, QFile::encodeName(version.path), version.path, O_NOFOLLOW);
}

QString EarlierVersions::keep(const QByteArray &bytes, VersionReason reason)
{
    const auto failure =
        failureOf([&] { RecoveryFolder(m_folders.value(0), m_calls).keep(bytes, m_name, reason); });
    return failure ? failure->notWritable() : QString();
}

QString EarlierVersions::rescue(const QByteArray &bytes)
{
    QString path;
    for (const QString &folder : m_folders) {
        RecoveryFolder recovery(folder, m_calls);
        if (!failureOf([&] { path = recovery.keep(bytes, m_name, VersionReason::Rescued); }))
            break;
    }
    return path;
}

QString EarlierVersions::remove(const EarlierVersion &version)
{
    const QByteArray path = QFile::encodeName(version.path);
    const auto failure = failureOf([&] {
        removeFile(m_calls, path);
        syncDirectory(m_calls, parentFolder(path));
    });
    return failure ? u"“%1” could not be removed: %2."_s.arg(version.path, failure->message()) : QString();
}

QString EarlierVersions::removeAll()
{
    QString error;
    for (const EarlierVersion &version : list()) {
        const QString left = remove(version);
        error = error.isEmpty() ? left : error;
    }
    return error;
}

void EarlierVersions::prune(QDate today)
{
    constexpr int daysToKeep = 30;
    QSet<VersionReason> seen;
    for (const EarlierVersion &version : list()) {
        const bool isNewest = !seen.contains(version.reason);
        seen.insert(version.reason);
        const bool isOld = version.time.date() < today.addDays(-daysToKeep);
        if (isOld && !isNewest && version.reason != VersionReason::Rescued)
            static_cast<void>(remove(version)); // tried again another day
    }
}

} // namespace oblino
