#include <records/cloudaccounts.h>

#include <files/defaults.h>

#include <QFile>
#include <QStringList>

#include <limits>

namespace oblino {

namespace {

const QString hostKey = QStringLiteral("host");
const QString portKey = QStringLiteral("port");
const QString databaseKey = QStringLiteral("database");
const QString userKey = QStringLiteral("user");
const QString tlsKey = QStringLiteral("tls");

} // namespace

CloudAccounts::CloudAccounts(QString path)
    : m_path(std::move(path))
{
}

CloudAccount CloudAccounts::load() const
{
    if (!QFile::exists(m_path))
        return {};
    const Defaults file(m_path);
    const auto text = [&file](const QString &key) { return file.text(key).value_or(QString()); };
    CloudAccount account = {.host = normalizedHosts(text(hostKey)),
                            .database = text(databaseKey),
                            .user = text(userKey),
                            .tlsMode = tlsModeOf(text(tlsKey))};
    if (!account.isRemote() || account.database.isEmpty() || account.user.isEmpty())
        return {};
    const qint64 port = file.integer(portKey);
    if (port > 0 && port <= std::numeric_limits<quint16>::max())
        account.port = static_cast<quint16>(port);
    return account;
}

bool CloudAccounts::save(const CloudAccount &account) const
{
    Defaults file(m_path);
    file.setText(hostKey, account.host);
    file.setInteger(portKey, account.port);
    file.setText(databaseKey, account.database);
    file.setText(userKey, account.user);
    file.setText(tlsKey, wordOf(account.tlsMode));
    return file.save();
}

QString normalizedHosts(const QString &hosts)
{
    QStringList tidy;
    for (const QString &host : hosts.split(QLatin1Char(','))) {
        if (const QString trimmed = host.trimmed(); !trimmed.isEmpty())
            tidy += trimmed;
    }
    return tidy.join(QLatin1Char(','));
}

} // namespace oblino
