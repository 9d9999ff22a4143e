#pragma once

#include <core/task.h>

#include <QDate>
#include <QList>

namespace oblino::bench {

/// Tasks such as a plan of two years holds, the same ones for the same arguments on every machine.
/// @param middle  the day on which the first year ends and the second begins
[[nodiscard]] QList<task> generatedTasks(qsizetype count, QDate middle);

/// Texts to search generated tasks for.
struct SearchTerms
{
    static inline const QString rare = QStringLiteral("zeppelin");    ///< one task in 500 holds it
    static inline const QString common = QStringLiteral("the");       ///< about half of them do
    static inline const QString oneLetter = QStringLiteral("a");      ///< all of them do
    static inline const QString missing = QStringLiteral("xylophon"); ///< none does
};

/// The tasks in another order, the same one each time.
[[nodiscard]] QList<task> shuffled(QList<task> tasks);

} // namespace oblino::bench
