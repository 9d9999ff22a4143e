#include <support/faultyfilecalls.h>

#include <cerrno>
#include <csignal>

namespace oblino {

void FaultyFileCalls::arm(int number, int fault)
{
    m_number = number;
    m_fault = fault;
    m_made = 0;
}

bool FaultyFileCalls::fails()
{
    if (++m_made != m_number || m_fault == halfTransfer)
        return false;
    if (m_fault == killProcess)
        raise(SIGKILL);
    errno = m_fault;
    return true;
}

bool FaultyFileCalls::fails(size_t &size)
{
    const bool failing = fails();
    if (m_made == m_number && m_fault == halfTransfer)
        size = (size + 1) / 2;
    return failing;
}

int FaultyFileCalls::open(const QByteArray &path, int flags, mode_t mode)
{
    return fails() ? -1 : FileCalls::open(path, flags, mode);
}

int FaultyFileCalls::close(int fd)
{
    const bool failing = fails();
    const int error = errno;
    const int answer = FileCalls::close(fd);
    errno = failing ? error : errno;
    return failing ? -1 : answer;
}

int FaultyFileCalls::fstat(int fd, struct stat *status)
{
    return fails() ? -1 : FileCalls::fstat(fd, status);
}

ssize_t FaultyFileCalls::pread(int fd, char *data, size_t size, off_t offset)
{
    return fails(size) ? -1 : FileCalls::pread(fd, data, size, offset);
}

ssize_t FaultyFileCalls::pwrite(int fd, const char *data, size_t size, off_t offset)
{
    return fails(size) ? -1 : FileCalls::pwrite(fd, data, size, offset);
}

int FaultyFileCalls::ftruncate(int fd, off_t size)
{
    return fails() ? -1 : FileCalls::ftruncate(fd, size);
}

int FaultyFileCalls::reserve(int fd, off_t size)
{
    return fails() ? -1 : FileCalls::reserve(fd, size);
}

int FaultyFileCalls::fsync(int fd)
{
    return fails() ? -1 : FileCalls::fsync(fd);
}

int FaultyFileCalls::rename(const QByteArray &from, const QByteArray &to)
{
    return fails() ? -1 : FileCalls::rename(from, to);
}

int FaultyFileCalls::unlink(const QByteArray &path)
{
    return fails() ? -1 : FileCalls::unlink(path);
}

int FaultyFileCalls::mkdir(const QByteArray &path, mode_t mode)
{
    return fails() ? -1 : FileCalls::mkdir(path, mode);
}

int FaultyFileCalls::rmdir(const QByteArray &path)
{
    return fails() ? -1 : FileCalls::rmdir(path);
}

} // namespace oblino
