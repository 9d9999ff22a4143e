#include <platform/defaults.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace oblino {

namespace {

// QSettings would make the file readable for everyone and then keeps the mode it finds.
void makePrivate(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    const int file =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file >= 0) {
        ::fchmod(file, 0600);
        ::close(file);
    }
}

std::unique_ptr<QSettings> opened(const QString &path)
{
    makePrivate(path);
    auto settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    settings->setFallbacksEnabled(false);
    return settings;
}

} // namespace

Defaults::Defaults(const QString &path)
    : m_path(path)
    , m_settings(opened(path))
{
}

Defaults &Defaults::standard()
{
    static Defaults instance(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                             QStringLiteral("/oblino.ini"));
    return instance;
}

void Defaults::setText(const QString &key, const QString &value)
{
    store(key, value);
}

void Defaults::setBool(const QString &key, bool value)
{
    store(key, value);
}

void Defaults::setInteger(const QString &key, qint64 value)
{
    store(key, value);
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
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        // An object never takes its error back. A new one shares the unsaved values of the old one.
        auto renewed = opened(m_path);
        renewed->moveToThread(m_settings->thread());
        m_settings.release()->deleteLater(); // its thread may be about to tell it something
        m_settings = std::move(renewed);
        m_settings->sync();
    }
    return m_settings->status() == QSettings::NoError;
}

void Defaults::store(const QString &key, const QVariant &value)
{
    const QMutexLocker lock(&m_mutex);
    makePrivate(m_path); // the event loop saves it soon, and the file may have been deleted
    m_settings->setValue(key, value);
}

QVariant Defaults::value(const QString &key) const
{
    const QMutexLocker lock(&m_mutex);
    return m_settings->value(key);
}

} // namespace oblino
