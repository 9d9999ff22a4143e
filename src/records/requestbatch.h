#pragma once

#include <records/cloudrequest.h>

namespace oblino {

/// Processes requests that wait together: in one transaction, and neighbours of one kind in one statement. It
/// opens the store where that is not open, and sets the error and the results of every request. One that
/// cannot be done spoils no other.
void processTogether(RecordStore &store, CloudRequest::Run requests);

} // namespace oblino
