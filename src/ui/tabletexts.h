#pragma once

#include <core/task.h>
#include <core/taskmarks.h>

#include <QDate>
#include <QList>
#include <QString>

namespace oblino {

/// What an empty table says.
struct EmptyText
{
    QString title;  ///< what is so
    QString advice; ///< what to do about it
};

/// What a table that is empty was to show.
struct EmptyTable
{
    QString view;          ///< its label
    QString searchTerm;    ///< empty outside a search
    qsizetype all = 0;     ///< how many tasks there are
    qsizetype matches = 0; ///< how many of them match the search, in any view
};

[[nodiscard]] EmptyText emptyText(const EmptyTable &table);

/// What is due, as in "3 due today, 1 overdue"; empty where nothing is.
[[nodiscard]] QString dueText(const DueCounts &counts);

/// Tells of tasks that were added; of a single one also where it is when the table does not show it.
/// @param view        the index of the view that is shown
/// @param searchTerm  empty outside a search
[[nodiscard]] QString addedText(const QList<task> &added, int view, const QString &searchTerm, QDate day);

} // namespace oblino
