#include <files/openfile.h>

#include <files/fileerror.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>

namespace oblino {

namespace {

/// A longer file is no text that anybody plans with, and reading it would use up the memory.
constexpr qsizetype largestFile = qsizetype{1} << 30;

template<typename Call>
auto uninterrupted(Call call)
{
    auto answer = call();
    while (answer == -1 && errno == EINTR)
        answer = call();
    return answer;
}

template<typename Call>
auto checked(Call call)
{
    const auto answer = uninterrupted(call);
    if (answer == -1)
        throw FileError{errno, {}};
    return answer;
}

bool isSameTime(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

OpenFile::OpenFile(FileCalls &calls, const QByteArray &path, int flags, mode_t mode)
    : m_calls(calls)
    , m_fd(checked([&] { return calls.open(path, flags | O_CLOEXEC | O_NOCTTY, mode); }))
{
}

OpenFile::OpenFile(OpenFile &&other) noexcept
    : m_calls(other.m_calls)
    , m_fd(std::exchange(other.m_fd, -1))
    , m_status(other.m_status)
{
}

OpenFile::~OpenFile()
{
    if (m_fd != -1)
        m_calls.close(m_fd);
}

OpenFile OpenFile::regular(FileCalls &calls, const QByteArray &path, int flags)
{
    // Without O_NONBLOCK a named pipe would wait for its other end.
    OpenFile file(calls, path, flags | O_NONBLOCK);
    try {
        file.refreshStatus();
    } catch (const FileError &) {
        if ((flags & O_EXCL) != 0)
            calls.unlink(path); // made, but of no use
        throw;
    }
    if (!S_ISREG(file.m_status.st_mode))
        throw FileError{S_ISDIR(file.m_status.st_mode) ? EISDIR : FileError::notRegular, {}};
    return file;
}

OpenFile OpenFile::inPrivateFolder(FileCalls &calls, const QByteArray &path, int flags)
{
    const auto open = [&] { return regular(calls, path, O_RDWR | O_CREAT | flags); };
    try {
        return open();
    } catch (const FileError &error) {
        if (error.code != ENOENT)
            throw;
    }
    makeDirectories(calls, parentFolder(path));
    return open();
}

void OpenFile::refreshStatus()
{
    checked([&] { return m_calls.fstat(m_fd, &m_status); });
}

QByteArray OpenFile::readAll() const
{
    if (m_status.st_size > largestFile)
        throw FileError{EFBIG, {}};
    // The one byte more lets the end of the file show without growing the buffer.
    QByteArray bytes(m_status.st_size + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    const auto read = [&] {
        return checked([&] {
            return m_calls.pread(m_fd, bytes.data() + filled, static_cast<size_t>(bytes.size() - filled),
                                 filled);
        });
    };
    while (const ssize_t count = read()) {
        filled += count;
        if (filled > largestFile)
            throw FileError{EFBIG, {}};
        if (filled == bytes.size())
            bytes.resize(2 * filled);
    }
    bytes.truncate(filled);
    return bytes;
}

bool OpenFile::holds(const QByteArray &bytes) const
{
    constexpr qsizetype chunk = qsizetype{1} << 20;
    QByteArray part(std::min(chunk, bytes.size() + 1), Qt::Uninitialized);
    qsizetype done = 0;
    const auto read = [&] {
        return checked(
            [&] { return m_calls.pread(m_fd, part.data(), static_cast<size_t>(part.size()), done); });
    };
    while (const ssize_t count = read()) {
        if (!QByteArrayView(bytes).sliced(done).startsWith(QByteArrayView(part).first(count)))
            return false;
        m_calls.tellProgress();
        done += count;
    }
    return done == bytes.size();
}

void OpenFile::writeAll(const QByteArray &bytes)
{
    constexpr qsizetype mostAtOnce = qsizetype{1} << 22;
    constexpr qsizetype mostUnsynced = qsizetype{1} << 24;
    qsizetype synced = 0;
    for (qsizetype done = 0; done < bytes.size();) {
        const auto size = static_cast<size_t>(std::min(mostAtOnce, bytes.size() - done));
        const ssize_t count =
            checked([&] { return m_calls.pwrite(m_fd, bytes.constData() + done, size, done); });
        if (count == 0)
            throw FileError{ENOSPC, {}};
        m_calls.tellProgress();
        done += count;
        if (done - synced >= mostUnsynced) {
            sync();
            synced = done;
        }
    }
}

void OpenFile::resize(off_t size)
{
    checked([&] { return m_calls.ftruncate(m_fd, size); });
}

void OpenFile::sync()
{
    checked([&] { return m_calls.fsync(m_fd); });
    m_calls.tellProgress();
}

void OpenFile::reserve(off_t size)
{
    if (size == 0 || uninterrupted([&] { return m_calls.reserve(m_fd, size); }) == 0)
        return;
    if (errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL)
        throw FileError{errno, {}};
}

bool isSameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool isUntouched(const struct stat &a, const struct stat &b)
{
    // A program may set the time of modification back, but not that of the last change.
    return isSameFile(a, b) && a.st_size == b.st_size && isSameTime(a.st_mtim, b.st_mtim) &&
           isSameTime(a.st_ctim, b.st_ctim);
}

QByteArray resolveSymlinks(const QString &path)
{
    // QFileInfo and weakly_canonical() give up at a link to a missing file, which a save is to create.
    constexpr int mostLinks = 40;
    std::error_code error;
    std::filesystem::path file = QFile::encodeName(QFileInfo(path).absoluteFilePath()).toStdString();
    for (int links = 0; links < mostLinks; ++links) {
        const auto folder = std::filesystem::weakly_canonical(file.parent_path(), error);
        if (!error)
            file = folder / file.filename();
        const auto next = std::filesystem::read_symlink(file, error);
        if (error)
            break;
        file = file.parent_path() / next;
    }
    return QByteArray::fromStdString(file.string());
}

QByteArray parentFolder(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash > 0 ? path.first(slash) : QByteArray("/");
}

std::optional<struct stat> statusOfFile(FileCalls &calls, const QByteArray &path)
{
    struct stat status = {};
    if (uninterrupted([&] { return calls.stat(path, &status); }) == 0)
        return status;
    if (errno != ENOENT)
        throw FileError{errno, {}};
    return std::nullopt;
}

void renameFile(FileCalls &calls, const QByteArray &from, const QByteArray &to)
{
    checked([&] { return calls.rename(from, to); });
}

void removeFile(FileCalls &calls, const QByteArray &path)
{
    if (calls.unlink(path) != 0 && errno != ENOENT)
        throw FileError{errno, {}};
}

void makeDirectories(FileCalls &calls, const QByteArray &path)
{
    const QByteArray parent = parentFolder(path);
    const auto make = [&] { return uninterrupted([&] { return calls.mkdir(path, 0700); }) == 0; };
    bool isMade = make();
    if (!isMade && errno == ENOENT && parent != path) {
        makeDirectories(calls, parent);
        isMade = make();
    }
    if (!isMade && errno == EEXIST)
        return;
    if (!isMade)
        throw FileError{errno, {}};
    try {
        syncDirectory(calls, parent);
    } catch (const FileError &) {
        calls.rmdir(path); // once it is there, nobody would flush its name again
        throw;
    }
}

void syncDirectory(FileCalls &calls, const QByteArray &path)
{
    try {
        OpenFile(calls, path, O_RDONLY | O_DIRECTORY).sync();
    } catch (const FileError &error) {
        // What may be written but not read cannot be flushed by us, and some file systems know no such thing.
        if (error.code != EACCES && error.code != EINVAL)
            throw;
    }
}

} // namespace oblino
