#include <files/filereading.h>

#include <files/openfile.h>

#include <cerrno>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

FileReading readFile(FileCalls &calls, const QByteArray &path, const QString &name, int flags)
{
    try {
        const OpenFile file = OpenFile::regular(calls, path, O_RDONLY | flags);
        return {FileReading::Outcome::Read, file.readAll(), {}, file.status()};
    } catch (const FileError &error) {
        return failedReading(name, error);
    }
}

FileReading failedReading(const QString &name, const FileError &error)
{
    if (error.code == ENOENT)
        return {FileReading::Outcome::Missing, {}, {}, {}};
    return {
        FileReading::Outcome::Failed, {}, u"“%1” could not be read: %2."_s.arg(name, error.message()), {}};
}

} // namespace oblino
