#include <files/defaults.h>

#include <QStandardPaths>

#include <utility>

namespace oblino {

namespace {

std::unique_ptr<QSettings> opened(const SettingsFile &file)
{
    file.makePrivate();
    auto settings = std::make_unique<QSettings>(file.path(), QSettings::IniFormat);
    settings->setFallbacksEnabled(false);
    return settings;
}

} // namespace

Defaults::Defaults(const QString &path)
    : m_file(path)
{
    m_file.removeLeftovers();
    m_settings = opened(m_file);
    static_cast<void>(isSafeToWrite());
}

Defaults &Defaults::standard()
{
    static Defaults instance(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                             QStringLiteral("/oblino.ini"));
    return instance;
}

std::optional<QString> Defaults::text(const QString &key) const
{
    const QVariant stored = value(key);
    switch (stored.typeId()) {
    case QMetaType::QString:
        return stored.toString();
    case QMetaType::QStringList: // an unquoted comma in a file edited by hand
        return stored.toStringList().join(QStringLiteral(", "));
    default:
        return std::nullopt;
    }
}

bool Defaults::boolean(const QString &key) const
{
    const QVariant stored = value(key);
    return stored.typeId() == QMetaType::Bool ? stored.toBool() : stored.toString() == QLatin1String("true");
}

qint64 Defaults::integer(const QString &key) const
{
    return value(key).toLongLong(); // 0 for what is not a whole number
}

bool Defaults::save()
{
    const QMutexLocker lock(&m_mutex);
    if (!isSafeToWrite())
        return false;
    putHeldValues();
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        renew();
        m_settings->sync();
    }
    return m_settings->status() == QSettings::NoError;
}

QString Defaults::eraseCopies()
{
    const QMutexLocker lock(&m_mutex);
    static_cast<void>(m_file.hasChanged());
    m_isFileKept = true; // a damaged one goes, too
    // A damaged file may hold a value under a key of its own, where nobody would ever look for it.
    if (m_file.hasCopies()) {
        m_held.clear();
        m_settings->clear();
    }
    return m_file.eraseCopies();
}

QStringList Defaults::takeNotices()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_notices, {});
}

void Defaults::store(const QString &key, const QVariant &value)
{
    const QMutexLocker lock(&m_mutex);
    m_file.makePrivate(); // the event loop saves it soon, and the file may have been deleted
    m_held.insert(key, value);
    if (isSafeToWrite())
        putHeldValues();
}

QVariant Defaults::value(const QString &key) const
{
    const QMutexLocker lock(&m_mutex);
    return m_held.value(key, m_settings->value(key));
}

bool Defaults::isSafeToWrite()
{
    if (m_file.hasChanged()) {
        m_isFileKept = false;
        m_settings->sync(); // reads what another program has written
    }
    if (m_isFileKept)
        return true;
    static_cast<void>(m_settings->allKeys()); // lines are looked at when they are needed
    const SettingsFile::Kept kept = m_file.keep(m_settings->status() != QSettings::FormatError);
    m_isFileKept = kept.isSafe;
    if (!kept.notice.isEmpty() && !m_notices.contains(kept.notice))
        m_notices += kept.notice;
    if (m_isFileKept && m_settings->status() == QSettings::FormatError)
        renew();
    return m_isFileKept;
}

void Defaults::putHeldValues()
{
    for (auto held = m_held.cbegin(); held != m_held.cend(); ++held)
        m_settings->setValue(held.key(), held.value());
    m_held.clear();
}

// An object never takes its error back. A new one shares the unsaved values of the old one.
void Defaults::renew()
{
    auto renewed = opened(m_file);
    renewed->moveToThread(m_settings->thread());
    m_settings.release()->deleteLater(); // its thread may be about to tell it something
    m_settings = std::move(renewed);
}

} // namespace oblino
