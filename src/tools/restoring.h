#pragma once

#include <core/task.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace oblino {

class EarlierVersions;
class SafeFile;
class TaskListFile;
class TaskManager;

/// A list into which tasks have been put: one whose key is there takes the first place of that key, another
/// goes to the end.
[[nodiscard]] QList<task> withTasks(QList<task> list, const QList<task> &added);

/// Makes `tasks` the store's full list, during a search too, once the list that it replaces is kept. The
/// selected task stays selected where it is still there. The file is not written.
/// @param tasks     in the colours of the light appearance; those without a key get one
/// @param versions  of the task list file, which knows how the store holds colours
/// @return an error in words for the user, upon which nothing has changed; else empty
[[nodiscard]] QString restoreList(TaskManager &store, const TaskListFile &file, EarlierVersions &versions,
                                  QList<task> tasks);

/// Puts `tasks` among those of the store as withTasks() does; else as restoreList().
[[nodiscard]] QString restoreTasks(TaskManager &store, const TaskListFile &file, EarlierVersions &versions,
                                   const QList<task> &tasks);

/// Makes `bytes` the content of a file, once the content that it replaces is kept.
/// @return an error in words for the user, empty when it was done
[[nodiscard]] QString restoreFile(SafeFile &file, EarlierVersions &versions, const QByteArray &bytes);

} // namespace oblino
