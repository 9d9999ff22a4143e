#pragma once

class QDateEdit;

namespace oblino {

/// Has a date field show dates in the locale's short form, the year in full, and a calendar in the colours of
/// the program. It takes only days that the task list file can hold.
void prepareDateField(QDateEdit *field);

} // namespace oblino
