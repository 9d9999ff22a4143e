#pragma once

#include <files/openfile.h>
#include <files/safefile.h>
#include <support/temporaryhome.h>

#include <QFileInfo>

namespace oblino {

/// Writes a file, and makes its folder when it is missing.
inline void put(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    TemporaryHome::write(path, bytes);
}

/// The status of a file, all zero where there is none.
[[nodiscard]] inline struct stat statusOf(const QString &path)
{
    struct stat status = {};
    static_cast<void>(::stat(QFile::encodeName(path).constData(), &status));
    return status;
}

/// A file of the user's in a folder of its own and a private folder, gone with the test. In memory where that
/// can be had, as syncing a busy disk takes long.
struct Place
{
    QTemporaryDir folder{
        (QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
        QStringLiteral("/safefile-XXXXXX")};
    QString privateFolder = folder.filePath(QStringLiteral("data/oblino"));
    QString recoveryFolder = privateFolder + QStringLiteral("/recovery");
    QString path = folder.filePath(QStringLiteral("docs/plan.txt"));

    explicit Place(const QByteArray &content = {})
    {
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("docs")));
        if (!content.isEmpty())
            put(path, content);
    }

    [[nodiscard]] SafeFile file() const { return SafeFile(path, privateFolder); }
    [[nodiscard]] QByteArray encodedPath() const { return resolveSymlinks(path); }

    /// The contents of the recovery folder's files, but for the versions of a day.
    [[nodiscard]] QByteArrayList kept() const { return keptIn(privateFolder, false); }
    /// The versions of a day.
    [[nodiscard]] QByteArrayList keptDaily() const { return keptIn(privateFolder, true); }
};

} // namespace oblino
