#pragma once

#include <core/task.h>
#include <files/documents.h>

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

class QLocale;

namespace oblino {

class TaskManager;

/// The task list file, "ltodolist.txt" in the documents folder: reads it into a store and writes the store's
/// whole list into it. Rows that cannot be read are left out of the list; their bytes, and those of rows that
/// hold more than a task, are kept as an earlier version before the first save replaces them. What another
/// program makes of the file is taken up; the list in memory gives way only to a list that is whole.
class TaskListFile
{
public:
    static inline const QString name = QStringLiteral("ltodolist.txt");

    TaskListFile(TaskManager &store, Documents &documents);

    /// Writes the whole list, during a search too. What another program has written meanwhile is merged into
    /// the store before.
    /// @return true when it was written, or when there is no documents folder
    bool saveToFile();

    /// The whole file as text; empty when there is none, when it cannot be read, or when there is no
    /// documents folder.
    [[nodiscard]] QString readFromFile();

    /// Adds every row of the text to the store, and copies its tasks to its backup.
    /// @return nothing of use: an empty text
    QString splitStringFile(const QString &joinedStr);

    /// Whether the tasks in memory hold the inverted colours of the dark appearance.
    [[nodiscard]] bool invertedColors() const { return m_invertedColors; }

    /// Whether the list in memory is newer than the file, because the last save failed, or the file has gone
    /// or been damaged since.
    [[nodiscard]] bool hasUnsavedChanges() const { return m_unsaved || !m_onlyHere.isEmpty() || m_isUnkept; }

    /// Takes up what another program has made of the file since it was last read or written. Its list takes
    /// the place of the one in memory; where that has unsaved changes, both are merged, which is to be saved
    /// then. A file that is missing, that cannot be read or that was cut short changes nothing.
    /// @return whether the list in memory was replaced
    bool takeUpChanges();
    /// Whether a save has merged something into the list in memory, since this was last asked.
    [[nodiscard]] bool takeMerged() { return std::exchange(m_isMerged, false); }

    /// Gives the tasks the colours of the appearance that there is now: reads the list again where the file
    /// is whole, and inverts the colours in memory where it is not.
    void interfaceModeChanged();

    /// "Saved" with the time, or "Not saved" with the reason; empty before the first save.
    [[nodiscard]] QString saveState(const QLocale &locale) const;
    /// Why the list is in no file, in a few words; empty where it is.
    [[nodiscard]] QString failure() const;
    /// The text that the file is to hold.
    [[nodiscard]] QByteArray text() const;
    /// Puts that text to the first place that takes it.
    /// @return the path there, empty where none does
    [[nodiscard]] QString rescue() const;

    /// The whole path; the name alone where there is no documents folder.
    [[nodiscard]] QString path() const;

    /// Removes the file and every copy of it that was kept. The store stays as it is.
    /// @return an error in words for the user, empty when nothing is left; a file that is missing is an error
    [[nodiscard]] QString erase();

    /// Takes the sentences on what has happened that reading and writing have gathered for the user.
    [[nodiscard]] QStringList takeNotices();
    /// What is wrong with the file at this moment, in whole sentences; usually nothing.
    [[nodiscard]] QString trouble() const { return m_trouble; }

private:
    bool takeUp(SafeFile &file);
    bool mergeForeign(SafeFile &file);
    void setOnlyHere(SafeFile &file, const QString &reason);
    bool merge(SafeFile &file, const FileReading &reading);
    bool readAgain(SafeFile &file, const FileReading &reading);
    void replaceList(SafeFile &file, const FileReading &reading);
    [[nodiscard]] QString faultOf(SafeFile &file, const QByteArray &bytes) const;
    [[nodiscard]] bool keepWhatGoes(const QList<task> &next);
    [[nodiscard]] bool kept(const QByteArray &bytes, VersionReason reason);
    [[nodiscard]] QString decoded(const QByteArray &bytes);
    void followAppearance();
    [[nodiscard]] bool keepRows(SafeFile &file);
    bool failed(const QString &error, const QString &reason);

    TaskManager &m_store;
    Documents &m_documents;
    QByteArray m_theirs; // what was last read that this object had not written itself
    QList<QByteArray> m_unreadableRows;
    QList<QByteArray> m_longRows; // they hold more than the tasks read from them
    QStringList m_notices;
    QString m_trouble;
    bool m_invertedColors = false;
    bool m_unsaved = false;
    QString m_onlyHere; // what has become of the file, which no longer holds the list
    bool m_isMerged = false;
    QDateTime m_savedAt;
    QString m_failure;       // why the last save failed
    bool m_isUnkept = false; // there is no documents folder for it
};

} // namespace oblino
