#pragma once

#include <files/filecalls.h>
#include <files/fileerror.h>

#include <QByteArray>
#include <QString>

namespace oblino {

/// What came of reading a whole file.
struct FileReading
{
    enum class Outcome { Read, Missing, Failed };

    Outcome outcome = Outcome::Failed;
    QByteArray bytes;        ///< the file's content when it was read, else empty
    QString error;           ///< why it failed, in words for the user, else empty
    struct stat status = {}; ///< of the file when reading it began
};

/// Reads a whole file. Anything but a regular one fails without waiting.
/// @param name   what an error calls the file
/// @param flags  for open(), besides O_RDONLY
[[nodiscard]] FileReading readFile(FileCalls &calls, const QByteArray &path, const QString &name,
                                   int flags = 0);

/// A reading that failed like that.
[[nodiscard]] FileReading failedReading(const QString &name, const FileError &error);

} // namespace oblino
