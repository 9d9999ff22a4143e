#pragma once

#include <core/task.h>

#include <QList>
#include <QString>

namespace oblino {

/// The tasks, in their order, whose name, description, client, team member or key contains the term; both
/// folded first (see foldedText()).
[[nodiscard]] QList<task> tasksMatching(const QList<task> &tasks, const QString &term);

} // namespace oblino
