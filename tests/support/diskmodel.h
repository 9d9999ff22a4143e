#pragma once

#include <platform/filecalls.h>

#include <QByteArray>
#include <QList>

#include <map>
#include <vector>

namespace oblino {

/// A disk in memory that keeps for certain only what was synced: a power cut loses any part of the rest, page
/// by page and name by name. Names start at "/disk", where the folder "docs" is.
class DiskModel : public FileCalls
{
public:
    static constexpr qsizetype pageSize = 32;

    struct Node
    {
        bool isFolder = false;
        QByteArray data;
        int changes = 0;
    };

    struct State
    {
        std::map<QByteArray, int> names;
        std::map<int, Node> nodes;

        [[nodiscard]] QByteArray content(const QByteArray &path) const;
        /// Adds a file, and the folders above it.
        void put(const QByteArray &path, const QByteArray &data);
        /// Equal for states that hold the same files.
        [[nodiscard]] QByteArray key() const;
    };

    /// One step that a power cut may lose; steps on names have a `from` or a `to`.
    struct Step
    {
        int node = 0;
        QByteArray from, to;
        bool isFolder = false;
        off_t offset = 0; ///< of the page `data`; without data, the new size
        QByteArray data;

        [[nodiscard]] bool isOnName() const { return !from.isEmpty() || !to.isEmpty(); }
    };

    /// The disk between two calls.
    struct Moment
    {
        State durable;
        std::vector<Step> unsynced;

        /// What a power cut may leave: of the unsynced steps on names the first few, all but one,
        /// or just one, and of the others likewise, in all combinations.
        [[nodiscard]] QList<State> afterPowerCut() const;
    };

    DiskModel();
    explicit DiskModel(const State &state);

    /// Makes the sync of that number (from 1) do nothing and seem to go well.
    void skipSync(int number) { m_skippedSync = number; }
    /// Makes that one fail. What was written to the file will not reach the disk by a later sync either.
    void failSync(int number) { m_failedSync = number; }
    [[nodiscard]] int syncs() const { return m_syncs; }

    /// The disk at the start and after each call that changed it.
    [[nodiscard]] const std::vector<Moment> &moments() const { return m_moments; }
    /// What the programs see.
    [[nodiscard]] const State &state() const { return m_cached; }

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
    int answer(int error) const;
    int make(const QByteArray &path, bool isFolder);
    void take(const Step &step);
    void keepMoment();

    State m_cached;
    Moment m_now;
    std::vector<Moment> m_moments;
    std::vector<QByteArray> m_open;
    int m_lastNode = 0;
    int m_syncs = 0;
    int m_skippedSync = 0;
    int m_failedSync = 0;
};

} // namespace oblino
