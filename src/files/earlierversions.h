#pragma once

#include <files/filecalls.h>
#include <files/filereading.h>
#include <files/versionname.h>

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace oblino {

/// One version that was kept of a user's file.
struct EarlierVersion
{
    QString path;   ///< the file that holds it
    QDateTime time; ///< when it was kept, to the second
    VersionReason reason = VersionReason::Unread;

    [[nodiscard]] bool operator==(const EarlierVersion &) const = default;
};

/// What is kept of one file of the user's besides the file itself: its earlier versions in the recovery
/// folder, and texts that were rescued to another place when neither the file nor that folder took them.
class EarlierVersions
{
public:
    /// @param name     the user's file, without its folder
    /// @param folders  where versions lie; the first is the recovery folder, the others take only rescued
    /// texts
    EarlierVersions(QString name, QStringList folders, FileCalls &calls = FileCalls::posix());

    /// The folders for that documents folder: the recovery folder, the documents folder (where there is one),
    /// the program's folder in XDG_STATE_HOME, the temporary folder.
    [[nodiscard]] static QStringList standardFolders(const QString &privateFolder,
                                                     const QString &documentsFolder);

    /// Every version, newest first. A file that is not a regular one of this user's is left out.
    [[nodiscard]] QList<EarlierVersion> list() const;
    /// The rescued texts among them, newest first.
    [[nodiscard]] QList<EarlierVersion> rescued() const;

    [[nodiscard]] FileReading read(const EarlierVersion &version) const;

    /// Keeps `bytes` as a version of now in the recovery folder.
    /// @return an error in words for the user, empty when it was done
    [[nodiscard]] QString keep(const QByteArray &bytes, VersionReason reason);

    /// Puts `bytes` to the first folder that takes them.
    /// @return the path there, empty where none does
    [[nodiscard]] QString rescue(const QByteArray &bytes);

    /// @return an error in words for the user, empty when it is gone
    [[nodiscard]] QString remove(const EarlierVersion &version);

    /// Removes every version.
    /// @return an error in words for the user, empty when nothing is left
    [[nodiscard]] QString removeAll();

    /// Removes versions that were kept more than 30 days before `today`, but never the newest of a reason.
    void prune(QDate today);

private:
    QString m_name;
    QStringList m_folders;
    FileCalls &m_calls;
};

} // namespace oblino
