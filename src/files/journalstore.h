#pragma once

#include <files/filecalls.h>
#include <files/journal.h>

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace oblino {

/// The journals of the user's files, each a file of its own in the private folder. Functions that can fail
/// answer 0 or the error (see OpenFile).
class JournalStore
{
public:
    JournalStore(const QString &folder, FileCalls &calls);

    /// The journal's file for the user's file `path`.
    [[nodiscard]] QByteArray fileFor(const QByteArray &path) const;

    /// Reads the journal for `path`; `journal` becomes none where it is damaged.
    [[nodiscard]] int load(const QByteArray &path, std::optional<Journal> &journal);

    /// Puts `journal` in the place of an earlier one, in one step. When that step was taken and seeing it
    /// safely on disk fails, `isInPlace` is true all the same.
    [[nodiscard]] int store(const Journal &journal, bool &isInPlace);

    /// Sees the journals' names safely on disk, which a store() that was cut short may have left undone.
    [[nodiscard]] int syncNames();

    /// Removes the journal for `path`. That is not waited for: a power cut may bring the journal back.
    void remove(const QByteArray &path);

    /// Removes every trace of what was to be written to `path`, or to a file of that name in another folder,
    /// and sees that safely on disk.
    [[nodiscard]] int erase(const QByteArray &path);

    /// Removes what a store() that was cut short left behind.
    void removeUnfinished(const QByteArray &path);

private:
    [[nodiscard]] QByteArrayList filesOf(const QByteArray &path);
    [[nodiscard]] QByteArray unfinishedFor(const QByteArray &path) const;

    QByteArray m_folder;
    FileCalls &m_calls;
};

} // namespace oblino
