#pragma once

#include <core/task.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace oblino {

class TaskManager;

/// The text of a task list file, and the rows that cannot be part of a text.
struct TaskListText
{
    QString text;
    QList<QByteArray> unreadableRows; ///< rows that are not valid UTF-8, byte for byte
};

/// Decodes the bytes of a task list file row by row.
[[nodiscard]] TaskListText decodedTaskList(const QByteArray &bytes);

/// What came of adding the rows of a text to the store.
struct TaskListReading
{
    bool invertedColors = false;      ///< whether the tasks hold the inverted colours of the dark appearance
    QList<QByteArray> unreadableRows; ///< rows that were left out, byte for byte
    QList<QByteArray> longRows;       ///< rows that hold more than the task read from them, byte for byte
};

/// Adds every row of the text to the store, whose default times stay what they were. What follows the last
/// "^" is no row; unless it is blank it counts as unreadable.
[[nodiscard]] TaskListReading addTaskList(const QString &text, TaskManager &store);

/// The tasks in the bytes of a task list file, or of a file of rows that were set aside from one, apart from
/// any store. Rows that cannot be read are left out; a row without a key gives a task with an empty one.
/// @param defaults  the times of a row that has none
/// @param dark      whether the tasks are to hold the inverted colours of the dark appearance
[[nodiscard]] QList<task> tasksInText(const QByteArray &bytes, const DefaultTimes &defaults, bool dark);

} // namespace oblino
