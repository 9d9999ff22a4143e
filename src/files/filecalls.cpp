#include <files/filecalls.h>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace oblino {

int FileCalls::open(const QByteArray &path, int flags, mode_t mode)
{
    return ::open(path.constData(), flags, mode);
}

int FileCalls::close(int fd)
{
    return ::close(fd);
}

int FileCalls::fstat(int fd, struct stat *status)
{
    return ::fstat(fd, status);
}

int FileCalls::stat(const QByteArray &path, struct stat *status)
{
    return ::stat(path.constData(), status);
}

ssize_t FileCalls::pread(int fd, char *data, size_t size, off_t offset)
{
    return ::pread(fd, data, size, offset);
}

ssize_t FileCalls::pwrite(int fd, const char *data, size_t size, off_t offset)
{
    return ::pwrite(fd, data, size, offset);
}

int FileCalls::ftruncate(int fd, off_t size)
{
    return ::ftruncate(fd, size);
}

int FileCalls::reserve(int fd, off_t size)
{
    return ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, size);
}

int FileCalls::fsync(int fd)
{
    return ::fsync(fd);
}

int FileCalls::rename(const QByteArray &from, const QByteArray &to)
{
    return ::rename(from.constData(), to.constData());
}

int FileCalls::unlink(const QByteArray &path)
{
    return ::unlink(path.constData());
}

int FileCalls::mkdir(const QByteArray &path, mode_t mode)
{
    return ::mkdir(path.constData(), mode);
}

int FileCalls::rmdir(const QByteArray &path)
{
    return ::rmdir(path.constData());
}

FileCalls &FileCalls::posix()
{
    static FileCalls calls;
    return calls;
}

} // namespace oblino
