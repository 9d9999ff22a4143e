#pragma once

#include <platform/filecalls.h>

namespace oblino {

/// The calls of this machine, except that one of them goes wrong.
class FaultyFileCalls : public FileCalls
{
public:
    /// What a call does in place of its work: fail with that `errno`, or one of these.
    static constexpr int halfTransfer = -1; ///< reads or writes half of what it should; other calls go well
    static constexpr int killProcess = -2;

    /// From now on, the call `number` (from 1) goes wrong in that way.
    void arm(int number, int fault);

    /// Whether that call has come.
    [[nodiscard]] bool hasStruck() const { return m_number > 0 && m_made >= m_number; }

    int open(const QByteArray &path, int flags, mode_t mode) override;
    int close(int fd) override;
    int fstat(int fd, struct stat *status) override;
    ssize_t pread(int fd, char *data, size_t size, off_t offset) override;
    ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override;
    int ftruncate(int fd, off_t size) override;
    int reserve(int fd, off_t size) override;
    int fsync(int fd) override;
    int rename(const QByteArray &from, const QByteArray &to) override;
    int unlink(const QByteArray &path) override;
    int mkdir(const QByteArray &path, mode_t mode) override;
    int rmdir(const QByteArray &path) override;

private:
    bool fails();
    bool fails(size_t &size);

    int m_number = 0;
    int m_fault = 0;
    int m_made = 0;
};

} // namespace oblino
