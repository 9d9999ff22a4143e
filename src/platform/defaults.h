#pragma once

#include <QMutex>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace oblino {

/// The per-user defaults: typed values by exact key, kept in one INI file that only the user can read
/// (mode 0600). Safe to use from any thread.
class Defaults
{
public:
    /// @param path  the settings file; it and its folder are made when they are missing
    explicit Defaults(const QString &path);

    /// The defaults of this user, in the desktop's configuration folder.
    static Defaults &standard();

    void setText(const QString &key, const QString &value);
    void setBool(const QString &key, bool value);
    void setInteger(const QString &key, qint64 value);

    /// The text under `key`; none when there is nothing or something that is not a text.
    [[nodiscard]] std::optional<QString> text(const QString &key) const;
    /// The boolean under `key`; false when there is none.
    [[nodiscard]] bool boolean(const QString &key) const;
    /// The integer under `key`; 0 when there is none.
    [[nodiscard]] qint64 integer(const QString &key) const;

    /// Sees the values on disk.
    /// @return whether that worked
    [[nodiscard]] bool save();

private:
    void store(const QString &key, const QVariant &value);
    [[nodiscard]] QVariant value(const QString &key) const;

    mutable QMutex m_mutex;
    QString m_path;
    std::unique_ptr<QSettings> m_settings;
};

} // namespace oblino
