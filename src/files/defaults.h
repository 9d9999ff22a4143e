#pragma once

#include <files/settingsfile.h>

#include <QHash>
#include <QMutex>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

namespace oblino {

/// The per-user defaults: typed values by exact key, kept in one INI file that only the user can read
/// (mode 0600). A damaged file is copied before it is rewritten; while that cannot be done, values are held
/// in memory. Safe to use from any thread.
class Defaults
{
public:
    /// Removes what a save that was killed has left beside the file.
    /// @param path  the settings file; it and its folder are made when they are missing
    explicit Defaults(const QString &path);

    /// The defaults of this user, in the desktop's configuration folder.
    static Defaults &standard();

    void setText(const QString &key, const QString &value) { store(key, value); }
    void setBool(const QString &key, bool value) { store(key, value); }
    void setInteger(const QString &key, qint64 value) { store(key, value); }

    /// The text under `key`; none when there is nothing or something that is not a text.
    [[nodiscard]] std::optional<QString> text(const QString &key) const;
    /// The boolean under `key`; false when there is none.
    [[nodiscard]] bool boolean(const QString &key) const;
    /// The integer under `key`; 0 when there is none.
    [[nodiscard]] qint64 integer(const QString &key) const;

    /// Writes the values to the file.
    /// @return whether that worked
    [[nodiscard]] bool save();

    /// Destroys every copy of a damaged file. Where there is one, every value goes, those under garbled keys
    /// too; the file follows with save().
    /// @return an error in words for the user, empty when no copy is left
    [[nodiscard]] QString eraseCopies();

    /// Takes the sentences that reading and writing have gathered for the user.
    [[nodiscard]] QStringList takeNotices();

private:
    void store(const QString &key, const QVariant &value);
    [[nodiscard]] QVariant value(const QString &key) const;
    [[nodiscard]] bool isSafeToWrite();
    void putHeldValues();
    void renew();

    mutable QMutex m_mutex;
    SettingsFile m_file;
    std::unique_ptr<QSettings> m_settings;
    bool m_isFileKept = false;
    QHash<QString, QVariant> m_held; // until the file may be written
    QStringList m_notices;
};

} // namespace oblino
