#pragma once

#include <core/listchange.h>

#include <QList>

namespace oblino {

/// What a user has done to the list, or what was done to it behind the user's back.
enum class ChangeKind {
    Add,
    Edit,
    Close,
    Reopen,
    Hide,
    Unhide,
    Clone,
    Delete,
    Move,
    Sort,
    Repeat,
    Restore,
    Merge,        ///< from the cloud copy
    OtherProgram, ///< which has changed the file
    Erase         ///< nothing is kept of what was there
};

/// One step of the user's, which is undone as a whole.
struct TaskStep
{
    ChangeKind kind = ChangeKind::Edit;
    QList<ListChange> changes; ///< one after the other
};

} // namespace oblino
