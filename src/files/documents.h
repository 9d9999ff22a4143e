#pragma once

#include <files/earlierversions.h>
#include <files/safefile.h>

#include <QString>

#include <map>
#include <optional>

namespace oblino {

/// The user's documents folder and the files in it that the program keeps, by name. Files are read whole and
/// rewritten whole through SafeFile.
class Documents
{
public:
    /// @param folder         the documents folder, or none where the user has none
    /// @param privateFolder  the program's own data folder, for journals and recovery copies
    Documents(std::optional<QString> folder, QString privateFolder, FileCalls &calls = FileCalls::posix());

    /// The folders of this user: the documents folder that the desktop names, made when it is missing, and
    /// none when it cannot be made.
    static Documents &standard();

    [[nodiscard]] std::optional<QString> folder() const { return m_folder; }

    /// The file `name` of the documents folder, or null where there is no folder. An interrupted save of it
    /// is brought to its end on the first call; what the user should know of that is in `recoveryNotices`.
    [[nodiscard]] SafeFile *file(const QString &name);

    /// The whole path of the file; the name alone where there is no folder.
    [[nodiscard]] QString path(const QString &name) const;

    /// What is kept of the file `name` besides the file itself.
    [[nodiscard]] EarlierVersions versions(const QString &name) const;

    /// Removes the file and every version that was kept of it, as SafeFile::erase() does.
    /// @return an error in words for the user, empty when nothing is left; a missing folder is an error
    [[nodiscard]] QString erase(const QString &name);

    /// Takes the sentences that recovering files has gathered for the user.
    [[nodiscard]] QStringList takeNotices();

private:
    std::optional<QString> m_folder;
    QString m_privateFolder;
    FileCalls &m_calls;
    std::map<QString, SafeFile> m_files;
    QStringList m_notices;
};

} // namespace oblino
