#include <files/earlierversions.h>

#include <files/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

QString stateFolder()
{
    const QString base = qEnvironmentVariable("XDG_STATE_HOME");
    // A relative path there is to be ignored.
    return (QDir::isAbsolutePath(base) ? base : QDir::homePath() + u"/.local/state"_s) + u"/oblino"_s;
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
    QList<EarlierVersion> versions;
    for (const QString &folder : m_folders) {
        const bool takesAll = folder == m_folders.first();
        for (const RecoveryFolder::Version &found : RecoveryFolder(folder, m_calls).versions(m_name)) {
            if (takesAll || found.name.reason == VersionReason::Rescued)
                versions << EarlierVersion{found.path, found.name.time, found.name.reason};
        }
    }
    std::ranges::stable_sort(versions, std::ranges::greater(), &EarlierVersion::time);
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
    FileReading reading;
    OpenFile file(m_calls);
    int error = isOwnFile(version.path) || !QFileInfo::exists(version.path) ? 0 : EPERM;
    if (error == 0)
        error = file.openRegular(QFile::encodeName(version.path), O_RDONLY | O_NOFOLLOW);
    if (error == 0)
        error = file.readAll(reading.bytes);
    reading.status = file.status();
    if (error == 0) {
        reading.outcome = FileReading::Outcome::Read;
        return reading;
    }
    reading.bytes.clear();
    reading.outcome = error == ENOENT ? FileReading::Outcome::Missing : FileReading::Outcome::Failed;
    reading.error = u"“%1” could not be read: %2."_s.arg(version.path, errorMessage(error));
    return reading;
}

QString EarlierVersions::keep(const QByteArray &bytes, VersionReason reason)
{
    RecoveryFolder folder(m_folders.value(0), m_calls);
    const RecoveryFolder::Kept kept = folder.keep(bytes, m_name, reason);
    return kept.error == 0 ? QString() : notWritable(folder.path(), kept.error);
}

QString EarlierVersions::rescue(const QByteArray &bytes)
{
    for (const QString &folder : m_folders) {
        const RecoveryFolder::Kept kept =
            RecoveryFolder(folder, m_calls).keep(bytes, m_name, VersionReason::Rescued);
        if (kept.error == 0)
            return kept.path;
    }
    return {};
}

QString EarlierVersions::remove(const EarlierVersion &version)
{
    const QByteArray path = QFile::encodeName(version.path);
    int error = m_calls.unlink(path) == 0 || errno == ENOENT ? 0 : errno;
    if (error == 0)
        error = syncDirectory(m_calls, parentFolder(path));
    return error == 0 ? QString()
                      : u"“%1” could not be removed: %2."_s.arg(version.path, errorMessage(error));
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
