#pragma once

#include <files/openfile.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>

#include <fcntl.h>

namespace oblino {

/// The calls of this machine, except that one of them goes wrong. They note what a power cut could still
/// lose, and whether the user's file was touched, or a journal removed, before all else was safe from that.
class FaultyFileCalls : public FileCalls
{
public:
    /// What a call does in place of its work: fail with that `errno`, or one of these.
    static constexpr int half = -1;        ///< half a transfer, nothing reserved; other calls go well
    static constexpr int death = -2;       ///< nothing, and nor does any later one, as after a kill
    static constexpr int deathMidway = -3; ///< the same after half a transfer

    explicit FaultyFileCalls(const QByteArray &userFile = {})
        : m_userFile(userFile)
    {
    }

    /// From now on, the call `number` (from 1) goes wrong in that way.
    void arm(int number, int fault)
    {
        m_number = number;
        m_fault = fault;
        m_made = 0;
    }

    /// Whether that call has come.
    [[nodiscard]] bool hasStruck() const { return m_number > 0 && m_made >= m_number; }

    bool isTooEarly = false;          ///< see above
    std::set<QByteArray> names;       ///< of files and folders, that are not safe
    std::map<QByteArray, bool> bytes; ///< of files, that are not safe, and whether syncing makes them so

    int open(const QByteArray &path, int flags, mode_t mode) override
    {
        if (fails({"open", path}))
            return -1;
        const bool isNew = (flags & O_CREAT) && ::access(path.constData(), F_OK) == -1;
        const int fd = FileCalls::open(path, flags, mode);
        m_paths[fd] = path;
        if (isNew && fd != -1)
            names.insert(path);
        return fd;
    }
    int fstat(int fd, struct stat *status) override
    {
        return fails({"fstat", m_paths[fd]}) ? -1 : FileCalls::fstat(fd, status);
    }
    int stat(const QByteArray &path, struct stat *status) override
    {
        return fails({"stat", path}) ? -1 : FileCalls::stat(path, status);
    }
    ssize_t pread(int fd, char *data, size_t size, off_t offset) override
    {
        return fails({"pread", m_paths[fd], offset}, &size) ? -1 : FileCalls::pread(fd, data, size, offset);
    }
    ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override
    {
        if (fails({"pwrite", m_paths[fd], offset}, &size))
            return -1;
        touch(m_paths[fd], offset == 0);
        return FileCalls::pwrite(fd, data, size, offset);
    }
    int ftruncate(int fd, off_t size) override
    {
        if (fails({"ftruncate", m_paths[fd]}))
            return -1;
        touch(m_paths[fd], size == 0);
        return FileCalls::ftruncate(fd, size);
    }
    int reserve(int fd, off_t size) override
    {
        if (fails({"reserve", m_paths[fd]}))
            return -1;
        errno = EOPNOTSUPP;
        return m_fault == half && m_made == m_number ? -1 : FileCalls::reserve(fd, size);
    }
    int fsync(int fd) override
    {
        const QByteArray &path = m_paths[fd];
        const auto unsynced = bytes.find(path);
        if (fails({"fsync", m_paths[fd]})) {
            // The system forgets what it could not write, and says so only once.
            if (errno != EINTR && unsynced != bytes.end())
                unsynced->second = false;
            return -1;
        }
        if (unsynced != bytes.end() && unsynced->second)
            bytes.erase(unsynced);
        std::erase_if(names, [&](const QByteArray &name) { return parentFolder(name) == path; });
        return FileCalls::fsync(fd);
    }
    int rename(const QByteArray &from, const QByteArray &to) override
    {
        if (fails({"rename", to}))
            return -1;
        names.erase(from);
        names.insert(to);
        if (auto moved = bytes.extract(from)) {
            moved.key() = to;
            bytes.insert(std::move(moved));
        }
        return FileCalls::rename(from, to);
    }
    int unlink(const QByteArray &path) override
    {
        if (fails({"unlink", path}))
            return -1;
        names.erase(path);
        bytes.erase(path);
        isTooEarly |= path.endsWith(".journal") && !(names.empty() && bytes.empty());
        return FileCalls::unlink(path);
    }
    int mkdir(const QByteArray &path, mode_t mode) override
    {
        if (fails({"mkdir", path}) || FileCalls::mkdir(path, mode) == -1)
            return -1;
        names.insert(path);
        return 0;
    }
    int rmdir(const QByteArray &path) override
    {
        if (fails({"rmdir", path}))
            return -1;
        names.erase(path);
        return FileCalls::rmdir(path);
    }

protected:
    struct Call
    {
        const char *name;
        QByteArray path; ///< of a renaming the new one
        off_t offset = 0;
    };
    /// Comes before each call.
    virtual void before(const Call &) {}

private:
    // Halves the size where the call is to stop midway.
    bool fails(const Call &call, size_t *size = nullptr)
    {
        before(call);
        const bool isStruck = ++m_made == m_number;
        if (isStruck && (m_fault == half || m_fault == deathMidway)) {
            if (size)
                *size = (*size + 1) / 2;
            return false;
        }
        errno = m_fault > 0 ? m_fault : EIO;
        return isStruck || (hasStruck() && m_fault <= death);
    }

    void touch(const QByteArray &path, bool isFromTheStart)
    {
        if (path == m_userFile) {
            const auto isOther = [this](const QByteArray &name) { return name != m_userFile; };
            isTooEarly |=
                std::any_of(names.begin(), names.end(), isOther) || bytes.size() > bytes.count(path);
        }
        bytes[path] = isFromTheStart || !bytes.contains(path) || bytes[path];
    }

    QByteArray m_userFile;
    std::map<int, QByteArray> m_paths; // of what is open
    int m_number = 0;
    int m_fault = 0;
    int m_made = 0;
};

} // namespace oblino
