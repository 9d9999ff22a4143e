#pragma once

#include <QByteArray>

#include <atomic>

#include <sys/stat.h>
#include <sys/types.h>

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

    virtual int open(const QByteArray &path, int flags, mode_t mode = 0600);
    virtual int close(int fd);
    virtual int fstat(int fd, struct stat *status);
    virtual int stat(const QByteArray &path, struct stat *status);
    virtual ssize_t pread(int fd, char *data, size_t size, off_t offset);
    virtual ssize_t pwrite(int fd, const char *data, size_t size, off_t offset);
    virtual int ftruncate(int fd, off_t size);
    /// Reserves blocks for `size` bytes without changing the file's length.
    virtual int reserve(int fd, off_t size);
    virtual int fsync(int fd);
    virtual int rename(const QByteArray &from, const QByteArray &to);
    virtual int unlink(const QByteArray &path);
    virtual int mkdir(const QByteArray &path, mode_t mode);
    virtual int rmdir(const QByteArray &path);

    /// Sets what is called each time some bytes of a file have gone in or out, on the thread that moved them.
    void setProgressHandler(void (*handler)()) { m_progressHandler = handler; }
    void tellProgress() const
    {
        if (auto *const handler = m_progressHandler.load())
            handler();
    }

    /// The calls of this machine.
    static FileCalls &posix();

private:
    std::atomic<void (*)()> m_progressHandler = nullptr;
};

} // namespace oblino
