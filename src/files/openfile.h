#pragma once

#include <files/filecalls.h>

#include <QByteArray>
#include <QString>

#include <optional>

namespace oblino {

/// One open file, closed when it goes. Calls that a signal interrupts are made again. Here and in the
/// functions below, what fails throws FileError.
class OpenFile
{
public:
    OpenFile(FileCalls &calls, const QByteArray &path, int flags, mode_t mode = 0600);
    OpenFile(OpenFile &&other) noexcept;
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    OpenFile &operator=(OpenFile &&) = delete;
    ~OpenFile();

    /// Opens a regular file and takes its status; anything else is refused without waiting for it.
    [[nodiscard]] static OpenFile regular(FileCalls &calls, const QByteArray &path, int flags);

    /// Opens for writing a file (0600) in a private folder, and makes both when they are missing.
    [[nodiscard]] static OpenFile inPrivateFolder(FileCalls &calls, const QByteArray &path, int flags);

    void refreshStatus();
    /// The status as it was last taken.
    [[nodiscard]] const struct stat &status() const { return m_status; }

    [[nodiscard]] QByteArray readAll() const;
    /// Reads whether the file holds `bytes` and nothing else.
    [[nodiscard]] bool holds(const QByteArray &bytes) const;
    /// Writes `bytes` from the start. Of many, parts are flushed meanwhile, so that FileCalls' progress
    /// handler is never left without a call for long.
    void writeAll(const QByteArray &bytes);
    void resize(off_t size);
    void sync();

    /// Reserves room on the disk for `size` bytes, where the file system can do that.
    void reserve(off_t size);

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

/// The status of the file that `path` leads to; none where it is missing.
[[nodiscard]] std::optional<struct stat> statusOfFile(FileCalls &calls, const QByteArray &path);

void renameFile(FileCalls &calls, const QByteArray &from, const QByteArray &to);
/// Removes a file, be it there or not.
void removeFile(FileCalls &calls, const QByteArray &path);

/// Makes a directory that the user alone can enter (0700), and those above it, where they are missing.
void makeDirectories(FileCalls &calls, const QByteArray &path);

/// Flushes the names in a directory.
void syncDirectory(FileCalls &calls, const QByteArray &path);

} // namespace oblino
