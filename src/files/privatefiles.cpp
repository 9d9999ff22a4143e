#include <files/privatefiles.h>

#include <files/fileerror.h>
#include <files/openfile.h>

#include <QFile>
#include <QFileInfo>

namespace oblino {

QString makePrivateFolder(const QString &path)
{
    const auto failure = failureOf([&] { makeDirectories(FileCalls::posix(), QFile::encodeName(path)); });
    return failure ? failure->message() : QString();
}

// A file that is there is not opened: closing it would let go of the locks that database connections of this
// process hold on it.
QString makePrivateFile(const QString &path)
{
    if (QFileInfo(path).isFile())
        return {};
    const auto failure = failureOf([&] {
        static_cast<void>(OpenFile::inPrivateFolder(FileCalls::posix(), QFile::encodeName(path), 0));
    });
    return failure ? failure->message() : QString();
}

} // namespace oblino
