#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <map>

namespace oblino {

/// Puts homes into memory from now on where that can be had, as syncing a busy disk takes long.
inline void useMemoryForTemporaryFiles()
{
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        qputenv("TMPDIR", "/dev/shm");
}

/// The content of a file, empty where there is none.
[[nodiscard]] inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The files in a folder and those below it in which a text stands.
[[nodiscard]] inline QStringList filesWith(const QString &folder, const QByteArray &text)
{
    QStringList files;
    for (QDirIterator all(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); all.hasNext();) {
        if (contentOf(all.next()).contains(text))
            files += all.filePath();
    }
    return files;
}

/// What lies in the recovery folder of that private folder: versions of a day or all others.
[[nodiscard]] inline QByteArrayList keptIn(const QString &privateFolder, bool isDaily)
{
    QByteArrayList contents;
    for (const QFileInfo &file :
         QDir(privateFolder + QStringLiteral("/recovery")).entryInfoList(QDir::Files)) {
        if (file.fileName().contains(QStringLiteral("[daily]")) == isDaily)
            contents << contentOf(file.filePath());
    }
    return contents;
}

/// A documents folder and a private folder of a test's own, gone with the test.
class TemporaryHome
{
public:
    TemporaryHome() { QDir(m_folder.path()).mkdir(QStringLiteral("Documents")); }

    [[nodiscard]] QString documents() const { return m_folder.filePath(QStringLiteral("Documents")); }
    [[nodiscard]] QString privateFolder() const { return m_folder.filePath(QStringLiteral("private")); }
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString listPath() const { return documents() + QStringLiteral("/ltodolist.txt"); }

    /// The files, in all folders, in which a text stands.
    [[nodiscard]] QStringList filesWith(const QByteArray &text) const
    {
        return oblino::filesWith(m_folder.path(), text);
    }

    /// What lies in the recovery folder, but for the versions of a day.
    [[nodiscard]] QByteArrayList kept() const { return keptIn(privateFolder(), false); }

    static QByteArray content(const QString &path) { return contentOf(path); }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(file.errorString()));
        QCOMPARE(file.write(bytes), bytes.size());
    }

private:
    QTemporaryDir m_folder;
};

/// Leads the state folder and the folder for temporary files into a home, as long as it lives.
class OwnFolders
{
public:
    explicit OwnFolders(const TemporaryHome &home)
    {
        for (const char *name : {"XDG_STATE_HOME", "TMPDIR"}) {
            const QString folder = home.path(QString::fromLatin1(name));
            QDir().mkdir(folder);
            m_before[name] = qgetenv(name);
            qputenv(name, QFile::encodeName(folder));
        }
    }
    OwnFolders(const OwnFolders &) = delete;
    OwnFolders &operator=(const OwnFolders &) = delete;
    ~OwnFolders()
    {
        for (const auto &[name, value] : m_before)
            value.isEmpty() ? qunsetenv(name) : qputenv(name, value);
    }

private:
    std::map<const char *, QByteArray> m_before;
};

} // namespace oblino
