#include <files/settingsfile.h>

#include <files/earlierversions.h>
#include <files/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QUtf8StringView>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
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

bool isOfOneSave(const timespec &lock, const timespec &file)
{
    constexpr time_t longestSave = 5; // seconds
    return std::pair(file.tv_sec, file.tv_nsec) >= std::pair(lock.tv_sec, lock.tv_nsec) &&
           file.tv_sec <= lock.tv_sec + longestSave;
}

// A copy that the user made may have a name of the same form ("oblino.ini.backup"). A file of a killed save
// is as old as the lock of that save; without the lock, only a name that nobody types tells it.
bool isLeftover(const QString &path, const struct stat *lock)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid())
        return false;
    static const QRegularExpression random(u"\\.[A-Za-z]*[a-z][A-Z][A-Za-z]*$"_s);
    return (lock && isOfOneSave(lock->st_mtim, status.st_mtim)) || random.match(path).hasMatch();
}

} // namespace

SettingsFile::SettingsFile(QString path)
    : m_path(std::move(path))
{
}

// QSettings would make the file readable for everyone and then keeps the mode it finds.
void SettingsFile::makePrivate() const
{
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    const int file =
        ::open(QFile::encodeName(m_path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file >= 0) {
        ::fchmod(file, 0600);
        ::close(file);
    }
}

void SettingsFile::removeLeftovers() const
{
    const QString lockPath = m_path + u".lock"_s;
    struct stat status = {};
    const bool hasLock = ::lstat(QFile::encodeName(lockPath).constData(), &status) == 0;
    const QFileInfo file(realPath(m_path));
    const QRegularExpression form(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(file.fileName()) + u"\\.[A-Za-z]{6}"_s));
    QStringList leftovers = file.dir().entryList(QDir::Files | QDir::Hidden).filter(form);
    if (leftovers.isEmpty() && !hasLock)
        return;
    QLockFile lock(lockPath); // takes over that of a program that has ended
    if (!lock.tryLock())
        return;
    for (const QString &name : std::as_const(leftovers)) {
        const QString path = file.dir().filePath(name);
        if (isLeftover(path, hasLock ? &status : nullptr))
            ::unlink(QFile::encodeName(path).constData());
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
    OpenFile file(FileCalls::posix());
    QByteArray bytes;
    int error = file.openRegular(QFile::encodeName(m_path), O_RDONLY);
    if (error == 0)
        error = file.readAll(bytes);
    if (error != 0 && error != ENOENT)
        return {false, u"The settings could not be read: “%1”: %2."_s.arg(m_path, errorMessage(error))};
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
