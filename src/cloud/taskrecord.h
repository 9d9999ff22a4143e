#pragma once

#include <core/task.h>
#include <records/cloudrecord.h>

namespace oblino {

/// The record type "Task", with a field for each field of a task and four for its colour.
[[nodiscard]] const RecordType &taskRecordType();

/// A record of a task, under a new name.
/// @param inDark  whether the task's colour is that of the dark appearance; the record's never is
[[nodiscard]] CloudRecord newTaskRecord(const task &t, bool inDark);

/// Sets every field of a task's record but its key.
void fillTaskRecord(CloudRecord &record, const task &t, bool inDark);

/// The task of a record. One without a key gets a key of its own, the same each time; any other is as the
/// task list file holds it, so that it is the same in the next run.
/// @param inDark  whether the task's colour is to be that of the dark appearance
/// @param made    gives what the record lacks, or holds in another type
[[nodiscard]] task taskOfRecord(const CloudRecord &record, bool inDark, task made = {});

} // namespace oblino
