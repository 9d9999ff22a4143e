#pragma once

#include <core/task.h>
#include <core/taskstep.h>

#include <QList>

namespace oblino {

class TaskManager;

/// As long as it lives, what is done to the full list of a store is one step, of what the list is at its end
/// beside what it was at its beginning. Of two, one in the other, the outer counts.
class ChangeScope
{
public:
    ChangeScope(TaskManager &store, ChangeKind kind);
    ChangeScope(const ChangeScope &) = delete;
    ChangeScope &operator=(const ChangeScope &) = delete;
    ~ChangeScope();

    /// The appearance has changed meanwhile, and the colours of the list with it.
    void invertColors();

private:
    TaskManager &m_store;
    ChangeKind m_kind;
    bool m_isOuter;
    QList<task> m_before;
};

} // namespace oblino
