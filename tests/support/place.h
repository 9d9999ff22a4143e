#pragma once

#include <platform/safefile.h>

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace oblino {

/// The content of a file, empty where there is none.
[[nodiscard]] QByteArray contentOf(const QString &path);

/// Writes a file, and makes its folder when it is missing.
void put(const QString &path, const QByteArray &bytes);

/// The status of a file, all zero where there is none.
[[nodiscard]] struct stat statusOf(const QString &path);

/// A file of the user's in a folder of its own and a private folder, gone with the test. In memory where that
/// can be had, as syncing a busy disk takes long.
struct Place
{
    QTemporaryDir folder;
    QString privateFolder;
    QString path;

    explicit Place(const QByteArray &content = {});

    [[nodiscard]] SafeFile file() const { return SafeFile(path, privateFolder); }
    [[nodiscard]] QByteArray encodedPath() const;

    /// A journal as an interrupted save from `before` to `after` leaves it.
    [[nodiscard]] QByteArray journal(const QByteArray &before, const QByteArray &after) const;

    /// The contents of the recovery folder's files.
    [[nodiscard]] QByteArrayList kept() const;
};

} // namespace oblino
