#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

namespace oblino {

/// A settings file as it lies on disk. Only the user can read it (mode 0600), and a damaged one is copied
/// before it is rewritten: beside it, where the copies are as private.
class SettingsFile
{
public:
    explicit SettingsFile(QString path);

    [[nodiscard]] const QString &path() const { return m_path; }

    /// Makes the file private; it and its folder are made when they are missing.
    void makePrivate() const;

    /// Removes what a program that was killed while it saved has left beside the file, with the values in it.
    /// Nothing is removed while another program saves.
    void removeLeftovers() const;

    /// Whether the file was replaced or written to since the last call.
    [[nodiscard]] bool hasChanged();

    /// What came of keep().
    struct Kept
    {
        bool isSafe = false; ///< whether the file may be rewritten
        QString notice;      ///< what the user should know, a whole sentence; usually nothing
    };

    /// Copies the file if it is damaged, unless the same content was copied before.
    /// @param isParsed  whether every line was understood
    [[nodiscard]] Kept keep(bool isParsed) const;

    /// Whether the file was found damaged once.
    [[nodiscard]] bool hasCopies() const;
    /// Removes every copy. @return an error in words for the user, empty when nothing is left
    [[nodiscard]] QString eraseCopies() const;

private:
    QString m_path;
    struct stat m_seen = {};
};

} // namespace oblino
