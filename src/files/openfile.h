#pragma once

#include <files/filecalls.h>

#include <QByteArray>
#include <QString>

namespace oblino {

/// One open file, closed when it goes. Calls that a signal interrupts are made again. Every function answers
/// 0, or what went wrong: an `errno`, notRegular or changed.
class OpenFile
{
public:
    static constexpr int notRegular = -1;
    static constexpr int changed = -2; ///< another program did something to it

    explicit OpenFile(FileCalls &calls)
        : m_calls(calls)
    {
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile();

    [[nodiscard]] int open(const QByteArray &path, int flags, mode_t mode = 0600);

    /// Opens a regular file and takes its status; anything else is refused without waiting for it.
    [[nodiscard]] int openRegular(const QByteArray &path, int flags, mode_t mode = 0600);

    /// Opens for writing a file (0600) in a private folder (0700), and makes the folder when it is missing.
    [[nodiscard]] int openPrivate(const QByteArray &path, int flags);

    [[nodiscard]] bool isOpen() const { return m_fd != -1; }

    [[nodiscard]] int refreshStatus();
    /// The status as it was last taken.
    [[nodiscard]] const struct stat &status() const { return m_status; }

    [[nodiscard]] int readAll(QByteArray &bytes);
    /// Reads whether the file holds `bytes` and nothing else; `changed` where it does not.
    [[nodiscard]] int expect(const QByteArray &bytes);
    /// Writes `bytes` from the start. Of many, parts are seen on disk meanwhile, so that FileCalls'
    /// progress handler is never left without a call for long.
    [[nodiscard]] int writeAll(const QByteArray &bytes);
    [[nodiscard]] int resize(off_t size);
    [[nodiscard]] int sync();

    /// Sees to it that `size` bytes fit the disk, where the file system can tell.
    [[nodiscard]] int reserve(off_t size);

private:
    FileCalls &m_calls;
    int m_fd = -1;
    struct stat m_status = {};
};

/// Whether `a` and `b` are of the same file.
[[nodiscard]] bool isSameFile(const struct stat &a, const struct stat &b);

/// Whether `a` and `b` are of the same file, and nobody wrote to it between them.
[[nodiscard]] bool isUntouched(const struct stat &a, const struct stat &b);

/// The file that `path` leads to, be it there or not.
[[nodiscard]] QByteArray resolveSymlinks(const QString &path);

/// The folder that holds the file or folder `path`.
[[nodiscard]] QByteArray parentFolder(const QByteArray &path);

/// Makes an empty file (0600) in a private folder (0700) where there is no file of that name.
/// @return in words why there is none, empty when there is one
[[nodiscard]] QString makePrivateFile(const QString &path);

/// The status of the file that `path` leads to.
[[nodiscard]] int statusOfFile(FileCalls &calls, const QByteArray &path, struct stat &status);

[[nodiscard]] int renameFile(FileCalls &calls, const QByteArray &from, const QByteArray &to);

/// Sees the names in a folder safely on disk.
[[nodiscard]] int syncDirectory(FileCalls &calls, const QByteArray &path);

/// A failure of the functions above in words for the user, fit for the end of a sentence.
[[nodiscard]] QString errorMessage(int error);

/// The sentence that `place`, a folder or a file by its path, could not be written.
[[nodiscard]] QString notWritable(const QString &place, int error);

} // namespace oblino
