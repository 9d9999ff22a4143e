#pragma once

#include <base/fieldtext.h>
#include <core/task.h>

#include <QByteArray>
#include <QByteArrayList>
#include <QList>

namespace oblino {

/// The content of the task list file: a row of 20 fields for each task, in UTF-8. A separator inside a text,
/// which would break the row, is written as the look-alike "¦" or "ˆ".
/// @param invertedColors  whether the tasks hold the inverted colours of the dark appearance; the file always
///                        holds those of the light one
[[nodiscard]] QByteArray taskListText(const QList<task> &tasks, bool invertedColors);

/// The rows of that text, one for each task, without their last "^" and without traces. Two tasks are the
/// same to the user when these are.
[[nodiscard]] QByteArrayList taskRows(const QList<task> &tasks, bool invertedColors);

} // namespace oblino
