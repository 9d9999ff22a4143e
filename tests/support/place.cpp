#include <support/place.h>
#include <support/temporaryhome.h>

#include <platform/journal.h>
#include <platform/openfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace oblino {

QByteArray contentOf(const QString &path)
{
    return TemporaryHome::content(path);
}

void put(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    TemporaryHome::write(path, bytes);
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    static_cast<void>(::stat(QFile::encodeName(path).constData(), &status));
    return status;
}

Place::Place(const QByteArray &content)
    : folder(QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm/safefile-XXXXXX"_s
                                                   : QDir::tempPath() + u"/safefile-XXXXXX"_s)
    , privateFolder(folder.filePath(u"data/oblino"_s))
    , path(folder.filePath(u"docs/plan.txt"_s))
{
    QVERIFY(QDir(folder.path()).mkdir(u"docs"_s));
    if (!content.isEmpty())
        put(path, content);
}

QByteArray Place::encodedPath() const
{
    return withoutLinks(path);
}

QByteArray Place::journal(const QByteArray &before, const QByteArray &after) const
{
    return Journal{encodedPath(), sha256(before), sha256(after), after}.encoded();
}

QByteArrayList Place::kept() const
{
    const QDir recovery(privateFolder + u"/recovery"_s);
    QByteArrayList contents;
    for (const QString &name : recovery.entryList(QDir::Files, QDir::Name))
        contents << contentOf(recovery.filePath(name));
    return contents;
}

} // namespace oblino
