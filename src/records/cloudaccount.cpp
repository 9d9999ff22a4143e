#include <records/cloudaccount.h>

#include <QDir>
#include <QFile>

namespace oblino {

QString StoreLocation::description() const
{
    return account.isRemote() ? QStringLiteral("%1@%2/%3").arg(account.user, account.host, account.database)
                              : file;
}

QLatin1String wordOf(TlsMode mode)
{
    switch (mode) {
    case TlsMode::Require:
        return QLatin1String("require");
    case TlsMode::Disable:
        return QLatin1String("disable");
    case TlsMode::VerifyFull:
        break;
    }
    return QLatin1String("verify-full");
}

TlsMode tlsModeOf(const QString &word)
{
    for (const TlsMode mode : {TlsMode::Require, TlsMode::Disable}) {
        if (word == wordOf(mode))
            return mode;
    }
    return TlsMode::VerifyFull;
}

QString rootCertificates(TlsMode mode)
{
    // libpq checks the certificate whenever it finds a file of authorities, and looks for one unless it is
    // told another.
    if (mode != TlsMode::VerifyFull)
        return QStringLiteral("/dev/null/none");
    const QString own = QDir::home().filePath(QStringLiteral(".postgresql/root.crt"));
    return QFile::exists(own) ? own : QStringLiteral("/etc/ssl/certs/ca-certificates.crt");
}

} // namespace oblino
