#pragma once

#include <platform/documents.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace oblino {

class TaskManager;

/// The task list file, "ltodolist.txt" in the documents folder: reads it into a store and writes the store's
/// whole list into it. Rows that cannot be read are left out of the list; their bytes go to a file of their
/// own before the first save replaces them.
class TaskListFile
{
public:
    static inline const QString name = QStringLiteral("ltodolist.txt");

    TaskListFile(TaskManager &store, Documents &documents);

    /// Writes the whole list, during a search too.
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

    /// Whether the list in memory is newer than the file because the last save failed.
    [[nodiscard]] bool hasUnsavedChanges() const { return m_unsaved; }

    /// Inverts the colours in memory in place of reading them anew, where they do not match the appearance.
    void followAppearance();

    /// The whole path; the name alone where there is no documents folder.
    [[nodiscard]] QString path() const;

    /// Removes the file and every copy of it that was kept. The store stays as it is.
    /// @return an error in words for the user, empty when nothing is left; a file that is missing is an error
    [[nodiscard]] QString erase();

    /// Takes the sentences that reading and writing have gathered for the user.
    [[nodiscard]] QStringList takeNotices();

private:
    [[nodiscard]] bool keepUnreadableRows(SafeFile &file);
    bool failed(const QString &error);

    TaskManager &m_store;
    Documents &m_documents;
    QList<QByteArray> m_unreadableRows;
    QStringList m_notices;
    bool m_invertedColors = false;
    bool m_unsaved = false;
};

} // namespace oblino
