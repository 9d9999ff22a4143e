#pragma once

#include <files/filecalls.h>
#include <files/journal.h>

#include <QByteArray>
#include <QString>

#include <optional>

namespace oblino {

/// The journals of the user's files, each a file of its own in the private folder. What fails throws
/// FileError, with that folder.
class JournalStore
{
public:
    JournalStore(QString folder, FileCalls &calls);

    /// The journal's file for the user's file `path`: its name, a hash of the whole path, "journal".
    [[nodiscard]] QByteArray fileFor(const QByteArray &path) const;

    /// Reads the journal for `path`; none where there is none.
    [[nodiscard]] std::optional<Journal> load(const QByteArray &path) const;

    /// Puts `journal` in the place of an earlier one, in one step, which is on disk after syncNames().
    void store(const Journal &journal);

    /// Flushes the journals' names.
    void syncNames();

    /// Removes the journal for `path`. That is not waited for: a power cut may bring the journal back.
    void remove(const QByteArray &path);

    /// Removes every trace of what was to be written to `path`, or to a file of that name in another folder,
    /// and waits until that is on disk.
    void erase(const QByteArray &path);

    /// Removes what a store() that was cut short left behind.
    void removeUnfinished(const QByteArray &path);

private:
    [[nodiscard]] QByteArray unfinishedFor(const QByteArray &path) const;

    QString m_folder;
    FileCalls &m_calls;
};

} // namespace oblino
