#pragma once

#include <QDate>
#include <QDateTime>

namespace oblino {

/// The days that the task list file can hold, whose years have two digits: from 50 years before today's year
/// to 49 after it.
struct FileDays
{
    QDate first;
    QDate last;
};

[[nodiscard]] FileDays fileDays(QDate today);

/// The moment itself where the file can hold its day, else the start of the first or last day that it can.
/// Now, where the moment is none.
[[nodiscard]] QDateTime withinFileDays(const QDateTime &moment);

} // namespace oblino
