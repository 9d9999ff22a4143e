#include <files/settingsfile.h>

#include <files/earlierversions.h>
#include <files/openfile.h>
#include <files/privatefiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QUtf8StringView>

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

// Where QSettings writes the file: beside the one that a link leads to.
QString realPath(const QString &path)
{
    return QFile::decodeName(resolveSymlinks(path));
}

EarlierVersions copiesOf(const QString &path)
{
    const QFileInfo file(realPath(path));
    return EarlierVersions(file.fileName(), {file.absolutePath()});
}

// QSettings ends every line, and writes neither zeros nor anything but UTF-8.
bool isWhole(const QByteArray &bytes)
{
    return bytes.isEmpty() ||
           (bytes.endsWith('\n') && !bytes.contains('\0') && QUtf8StringView(bytes).isValidUtf8());
}

// A copy that the user made may have a name of the same form ("oblino.ini.backup"), but is not as old as the
// lock of a save that was killed.
bool isLeftover(const QString &path, const struct stat &lock)
{
    constexpr time_t longestSave = 5; // seconds
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid())
        return false;
    const auto timeOf = [](const struct stat &file) {
        return std::pair(file.st_mtim.tv_sec, file.st_mtim.tv_nsec);
    };
    return timeOf(status) >= timeOf(lock) && status.st_mtim.tv_sec <= lock.st_mtim.tv_sec + longestSave;
}

} // namespace

SettingsFile::SettingsFile(QString path)
    : m_path(std::move(path))
{
}

// QSettings would make the file readable for everyone and then keeps the mode it finds.
void SettingsFile::makePrivate() const
{
    const QByteArray file = QFile::encodeName(m_path);
    struct stat status = {};
    // Setting the mode that is there already would look like a change of the file.
    if (makePrivateFile(m_path).isEmpty() && ::stat(file.constData(), &status) == 0 &&
        (status.st_mode & 0777) != 0600)
        ::chmod(file.constData(), 0600);
}

void SettingsFile::removeLeftovers() const
{
    const QString lockPath = m_path + u".lock"_s;
    struct stat status = {};
    if (::lstat(QFile::encodeName(lockPath).constData(), &status) != 0)
        return;
    QLockFile lock(lockPath); // takes over that of a program that has ended
    if (!lock.tryLock())
        return;
    const QFileInfo file(realPath(m_path));
    for (const QFileInfo &other :
         file.dir().entryInfoList({file.fileName() + u".??????"_s}, QDir::Files | QDir::Hidden)) {
        if (isLeftover(other.filePath(), status))
            ::unlink(QFile::encodeName(other.filePath()).constData());
    }
}

bool SettingsFile::hasChanged()
{
    struct stat status = {};
    static_cast<void>(::stat(QFile::encodeName(m_path).constData(), &status)); // all zero where there is none
    return !isUntouched(std::exchange(m_seen, status), status);
}

SettingsFile::Kept SettingsFile::keep(bool isParsed) const
{
    const FileReading reading = readFile(FileCalls::posix(), QFile::encodeName(m_path), m_path);
    if (reading.outcome == FileReading::Outcome::Failed)
        return {false, u"The settings file "_s + reading.error};
    const QByteArray &bytes = reading.bytes;
    if (bytes.isEmpty() || (isParsed && isWhole(bytes)))
        return {true, {}};

    EarlierVersions copies = copiesOf(m_path);
    const QList<EarlierVersion> known = copies.list();
    if (std::ranges::any_of(known, [&](const auto &copy) { return copies.read(copy).bytes == bytes; }))
        return {true, {}};
    const QString notKept = copies.keep(bytes, VersionReason::Damaged);
    if (!notKept.isEmpty()) {
        return {false, u"The settings file “%1” is damaged and cannot be copied, so changed settings are not "
                       "saved: %2"_s.arg(m_path, notKept)};
    }
    return {true, u"The settings file “%1” is damaged. What can be read of it is used, and a copy lies "
                  "beside it as “%2”."_s.arg(m_path, QFileInfo(copies.list().value(0).path).fileName())};
}

bool SettingsFile::hasCopies() const
{
    return !copiesOf(m_path).list().isEmpty();
}

QString SettingsFile::eraseCopies() const
{
    return copiesOf(m_path).removeAll();
}

} // namespace oblino
