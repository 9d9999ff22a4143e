#include <files/openfile.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

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
int outcome(Call call)
{
    return uninterrupted(call) == -1 ? errno : 0;
}

int makeFolder(FileCalls &calls, const QByteArray &path)
{
    int error = outcome([&] { return calls.mkdir(path, 0700); });
    if (error == ENOENT && parentFolder(path) != path) {
        error = makeFolder(calls, parentFolder(path));
        if (error == 0)
            error = outcome([&] { return calls.mkdir(path, 0700); });
    }
    if (error == EEXIST)
        return 0;
    if (error == 0) {
        error = syncDirectory(calls, parentFolder(path));
        // Once it is there, nobody would see to its name again.
        if (error != 0)
            calls.rmdir(path);
    }
    return error;
}

bool isSameTime(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

OpenFile::~OpenFile()
{
    if (m_fd != -1)
        m_calls.close(m_fd);
}

int OpenFile::open(const QByteArray &path, int flags, mode_t mode)
{
    if (m_fd != -1)
        m_calls.close(m_fd);
    m_fd = uninterrupted([&] { return m_calls.open(path, flags | O_CLOEXEC | O_NOCTTY, mode); });
    return m_fd == -1 ? errno : 0;
}

int OpenFile::openRegular(const QByteArray &path, int flags, mode_t mode)
{
    // Without O_NONBLOCK a named pipe would wait for its other end.
    int error = open(path, flags | O_NONBLOCK, mode);
    if (error == 0)
        error = refreshStatus();
    if (error == 0 && !S_ISREG(m_status.st_mode))
        error = S_ISDIR(m_status.st_mode) ? EISDIR : notRegular;
    return error;
}

int OpenFile::openPrivate(const QByteArray &path, int flags)
{
    int error = openRegular(path, O_RDWR | O_CREAT | flags);
    if (error == ENOENT) {
        error = makeFolder(m_calls, parentFolder(path));
        if (error == 0)
            error = openRegular(path, O_RDWR | O_CREAT | flags);
    }
    return error;
}

int OpenFile::refreshStatus()
{
    return outcome([&] { return m_calls.fstat(m_fd, &m_status); });
}

int OpenFile::readAll(QByteArray &bytes)
{
    qsizetype filled = 0;
    if (m_status.st_size > largestFile)
        return EFBIG;
    // The one byte more lets the end of the file show without growing the buffer.
    bytes.resize(m_status.st_size + 1);
    for (;;) {
        const ssize_t count = uninterrupted([&] {
            return m_calls.pread(m_fd, bytes.data() + filled, static_cast<size_t>(bytes.size() - filled),
                                 filled);
        });
        if (count == -1)
            return errno;
        if (count == 0)
            break;
        filled += count;
        if (filled > largestFile)
            return EFBIG;
        if (filled == bytes.size())
            bytes.resize(2 * filled);
    }
    bytes.truncate(filled);
    return 0;
}

int OpenFile::expect(const QByteArray &bytes)
{
    constexpr qsizetype chunk = qsizetype{1} << 20;
    QByteArray read(std::min(chunk, bytes.size() + 1), Qt::Uninitialized);
    for (qsizetype done = 0;;) {
        const ssize_t count = uninterrupted(
            [&] { return m_calls.pread(m_fd, read.data(), static_cast<size_t>(read.size()), done); });
        if (count == -1)
            return errno;
        if (count == 0)
            return done == bytes.size() ? 0 : changed;
        if (!QByteArrayView(bytes).sliced(done).startsWith(QByteArrayView(read).first(count)))
            return changed;
        m_calls.tellProgress();
        done += count;
    }
}

int OpenFile::writeAll(const QByteArray &bytes)
{
    constexpr qsizetype mostAtOnce = qsizetype{1} << 22;
    constexpr qsizetype mostUnsynced = qsizetype{1} << 24;
    qsizetype done = 0;
    qsizetype synced = 0;
    while (done < bytes.size()) {
        const qsizetype size = std::min(mostAtOnce, bytes.size() - done);
        const ssize_t count = uninterrupted(
            [&] { return m_calls.pwrite(m_fd, bytes.constData() + done, static_cast<size_t>(size), done); });
        if (count == -1)
            return errno;
        if (count == 0)
            return ENOSPC;
        m_calls.tellProgress();
        done += count;
        if (done - synced < mostUnsynced)
            continue;
        if (const int error = sync(); error != 0)
            return error;
        synced = done;
    }
    return 0;
}

int OpenFile::resize(off_t size)
{
    return outcome([&] { return m_calls.ftruncate(m_fd, size); });
}

int OpenFile::sync()
{
    const int error = outcome([&] { return m_calls.fsync(m_fd); });
    m_calls.tellProgress();
    return error;
}

int OpenFile::reserve(off_t size)
{
    if (size == 0)
        return 0;
    const int error = outcome([&] { return m_calls.reserve(m_fd, size); });
    return error == EOPNOTSUPP || error == ENOSYS || error == EINVAL ? 0 : error;
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

int statusOfFile(FileCalls &calls, const QByteArray &path, struct stat &status)
{
    return outcome([&] { return calls.stat(path, &status); });
}

int renameFile(FileCalls &calls, const QByteArray &from, const QByteArray &to)
{
    return outcome([&] { return calls.rename(from, to); });
}

int syncDirectory(FileCalls &calls, const QByteArray &path)
{
    OpenFile folder(calls);
    int error = folder.open(path, O_RDONLY | O_DIRECTORY);
    // A folder that may be written but not read cannot be synced by anybody like us.
    if (error == EACCES)
        return 0;
    if (error == 0)
        error = folder.sync();
    // So say file systems that know no syncing of folders.
    return error == EINVAL ? 0 : error;
}

// A file that is there is not opened: closing it would let go of the locks that database connections of this
// process hold on it.
QString makePrivateFile(const QString &path)
{
    const QFileInfo file(path);
    if (file.exists())
        return file.isFile() ? QString() : errorMessage(OpenFile::notRegular);
    OpenFile made(FileCalls::posix());
    const int error = made.openPrivate(QFile::encodeName(path), O_EXCL);
    // Another program may have made it meanwhile.
    return error == 0 || (error == EEXIST && QFileInfo(path).isFile()) ? QString() : errorMessage(error);
}

QString errorMessage(int error)
{
    switch (error) {
    case OpenFile::notRegular:
        return u"it is not a regular file"_s;
    case ENOSPC:
        return u"disk full"_s;
    case OpenFile::changed:
        return u"another program keeps changing it"_s;
    default:
        return qt_error_string(error);
    }
}

QString notWritable(const QString &place, int error)
{
    return u"“%1” could not be written: %2."_s.arg(place, errorMessage(error));
}

} // namespace oblino
