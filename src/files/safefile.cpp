#include <files/safefile.h>

#include <files/earlierversions.h>
#include <files/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

SafeFile::SafeFile(QString path, const QString &privateFolder, FileCalls &calls)
    : m_path(std::move(path))
    , m_privateFolder(QDir(privateFolder).absolutePath())
    , m_calls(calls)
    , m_journals(m_privateFolder, calls)
    , m_recovery(m_privateFolder + u"/recovery"_s, calls)
{
}

QString SafeFile::fileName() const
{
    return QFileInfo(m_path).fileName();
}

QString SafeFile::journalPath() const
{
    return QFile::decodeName(m_journals.fileFor(resolveSymlinks(m_path)));
}

QString SafeFile::recoveryFolder() const
{
    return m_recovery.path();
}

EarlierVersions SafeFile::versions() const
{
    const QStringList folders =
        EarlierVersions::standardFolders(m_privateFolder, QFileInfo(m_path).absolutePath());
    return EarlierVersions(fileName(), folders, m_calls);
}

Quarantined SafeFile::quarantine(const QByteArray &bytes)
{
    const RecoveryFolder::Kept kept = m_recovery.keep(bytes, fileName(), VersionReason::SetAside);
    if (kept.error != 0)
        return {{}, notWritable(m_recovery.path(), kept.error)};
    return {kept.path, {}};
}

FileReading SafeFile::look()
{
    FileReading reading;
    OpenFile file(m_calls);
    int error = file.openRegular(resolveSymlinks(m_path), O_RDONLY);
    if (error == 0)
        error = file.readAll(reading.bytes);
    reading.status = file.status();
    if (error == 0) {
        reading.outcome = FileReading::Outcome::Read;
        return reading;
    }
    reading.bytes.clear();
    reading.outcome = error == ENOENT ? FileReading::Outcome::Missing : FileReading::Outcome::Failed;
    if (error != ENOENT)
        reading.error = u"“%1” could not be read: %2."_s.arg(fileName(), errorMessage(error));
    return reading;
}

void SafeFile::take(const FileReading &reading)
{
    m_seen = {};
    if (reading.outcome == FileReading::Outcome::Read)
        m_seen = {true, reading.status, reading.bytes};
}

FileReading SafeFile::read()
{
    FileReading reading = look();
    const bool isRead = reading.outcome == FileReading::Outcome::Read;
    if (m_pending && isRead && m_pending->stateOf(reading.bytes) == Journal::State::Other) {
        m_pending.reset();
        m_strayJournal = true;
    }
    if (m_pending && isRead) {
        reading.bytes = m_pending->text;
        m_strayJournal = false;
    } else {
        take(reading);
    }
    return reading;
}

bool SafeFile::isAsSeen()
{
    OpenFile file(m_calls);
    return hasSeen() && !m_pending && file.openRegular(resolveSymlinks(m_path), O_RDONLY) == 0 &&
           isUntouched(m_seen.status, file.status());
}

QString SafeFile::erase()
{
    const QByteArray path = resolveSymlinks(m_path);
    const int error = removeFile(path);
    const QString words = u"“%1” could not be removed: %2."_s;
    if (error != 0 && error != ENOENT)
        return words.arg(fileName(), errorMessage(error));
    m_seen = {};
    m_pending.reset();
    if (const int left = m_journals.erase(path); left != 0)
        return words.arg(journalPath(), errorMessage(left));
    m_strayJournal = false;
    if (QString left = versions().removeAll(); !left.isEmpty())
        return left;
    return error == 0 ? QString() : words.arg(fileName(), errorMessage(error));
}

int SafeFile::removeFile(const QByteArray &path)
{
    const QFileInfo info(QFile::decodeName(path));
    if (info.exists() && !info.isFile())
        return OpenFile::notRegular;
    if (m_calls.unlink(path) != 0)
        return errno;
    return syncDirectory(m_calls, parentFolder(path));
}

} // namespace oblino
