#pragma once

#include <QByteArray>

#include <atomic>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace oblino {

/// The file calls of the operating system through which a user's file is read and rewritten. Every call
/// answers as the call of the same name does: -1 and `errno` on failure. The seam lets a test fail, or kill
/// the process at, any one of them.
class FileCalls
{
public:
    FileCalls() = default;
    FileCalls(const FileCalls &) = delete;
    FileCalls &operator=(const FileCalls &) = delete;
    virtual ~FileCalls() = default;

    virtual int open(const QByteArray &path, int flags, mode_t mode = 0600)
    {
        return ::open(path.constData(), flags, mode);
    }
    virtual int close(int fd) { return ::close(fd); }
    virtual int fstat(int fd, struct stat *status) { return ::fstat(fd, status); }
    virtual int stat(const QByteArray &path, struct stat *status) { return ::stat(path.constData(), status); }
    virtual ssize_t pread(int fd, char *data, size_t size, off_t offset)
    {
        return ::pread(fd, data, size, offset);
    }
    virtual ssize_t pwrite(int fd, const char *data, size_t size, off_t offset)
    {
        return ::pwrite(fd, data, size, offset);
    }
    virtual int ftruncate(int fd, off_t size) { return ::ftruncate(fd, size); }
    /// Reserves blocks for `size` bytes without changing the file's length.
    virtual int reserve(int fd, off_t size) { return ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, size); }
    virtual int fsync(int fd) { return ::fsync(fd); }
    virtual int rename(const QByteArray &from, const QByteArray &to)
    {
        return ::rename(from.constData(), to.constData());
    }
    virtual int unlink(const QByteArray &path) { return ::unlink(path.constData()); }
    virtual int mkdir(const QByteArray &path, mode_t mode) { return ::mkdir(path.constData(), mode); }
    virtual int rmdir(const QByteArray &path) { return ::rmdir(path.constData()); }

    /// Sets what is called each time some bytes of a file have gone in or out, on the thread that moved them.
    void setProgressHandler(void (*handler)()) { m_progressHandler = handler; }
    void tellProgress() const
    {
        if (auto *const handler = m_progressHandler.load())
            handler();
    }

    /// The calls of this machine.
    static FileCalls &posix()
    {
        static FileCalls calls;
        return calls;
    }

private:
    std::atomic<void (*)()> m_progressHandler = nullptr;
};

} // namespace oblino
