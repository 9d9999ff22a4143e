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

namespace {

template<typename Work>
Quarantine quarantined(Work work)
{
    try {
        return {work(), {}, {}};
    } catch (const FileError &error) {
        return {{}, error.notWritable(), error.message()};
    }
}

} // namespace

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

EarlierVersions SafeFile::versions() const
{
    const QStringList folders =
        EarlierVersions::standardFolders(m_privateFolder, QFileInfo(m_path).absolutePath());
    return EarlierVersions(fileName(), folders, m_calls);
}

Quarantine SafeFile::quarantine(const QByteArray &bytes)
{
    return quarantined([&] { return m_recovery.keep(bytes, fileName(), VersionReason::Quarantined); });
}

Quarantine SafeFile::quarantineFile()
{
    return quarantined(
        [&] { return m_recovery.move(resolveSymlinks(m_path), fileName(), VersionReason::Unread); });
}

FileReading SafeFile::look()
{
    return readFile(m_calls, resolveSymlinks(m_path), fileName());
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
    if (!hasSeen() || m_pending)
        return false;
    try {
        const OpenFile file = OpenFile::regular(m_calls, resolveSymlinks(m_path), O_RDONLY);
        return isUntouched(m_seen.status, file.status());
    } catch (const FileError &) {
        return false;
    }
}

QString SafeFile::erase()
{
    const QByteArray path = resolveSymlinks(m_path);
    const auto failure = failureOf([&] { removeItself(path); });
    const QString words = u"“%1” could not be removed: %2."_s;
    QString error = failure ? words.arg(fileName(), failure->message()) : QString();
    if (failure && failure->code != ENOENT)
        return error;
    m_seen = {};
    m_pending.reset();
    if (const auto left = failureOf([&] { m_journals.erase(path); }))
        return words.arg(journalPath(), left->message());
    m_strayJournal = false;
    QString left = versions().removeAll();
    return left.isEmpty() ? error : left;
}

void SafeFile::removeItself(const QByteArray &path)
{
    const QFileInfo info(QFile::decodeName(path));
    if (info.exists() && !info.isFile())
        throw FileError{FileError::notRegular, {}};
    if (m_calls.unlink(path) != 0)
        throw FileError{errno, {}};
    syncDirectory(m_calls, parentFolder(path));
}

} // namespace oblino
