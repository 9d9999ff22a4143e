#pragma once

#include <QString>

namespace oblino {

/// How the connection to a server is protected.
enum class TlsMode {
    VerifyFull, ///< encrypted, to the very server that the certificate names
    Require,    ///< encrypted, to whoever answers
    Disable,
};

/// A PostgreSQL server, or any engine that speaks its protocol, on which a user's cloud records lie. Without
/// a host the records lie on this machine.
struct CloudAccount
{
    QString host = {};
    quint16 port = 5432;
    QString database = {};
    QString user = {};
    TlsMode tlsMode = TlsMode::VerifyFull;

    [[nodiscard]] bool isRemote() const { return !host.isEmpty(); }
    friend bool operator==(const CloudAccount &, const CloudAccount &) = default;
};

/// Where cloud records lie: on the server of an account, or in a file of this machine.
struct StoreLocation
{
    QString file; ///< for an account without a host; its folder is made (0700) when it is missing
    CloudAccount account = {};
    QString password = {};

    /// For people: the file, or user, host and database.
    [[nodiscard]] QString description() const;
    friend bool operator==(const StoreLocation &, const StoreLocation &) = default;
};

/// The mode by the word that libpq and the account's file have for it.
[[nodiscard]] QLatin1String wordOf(TlsMode mode);
/// The mode of a word; VerifyFull for a word that is none, so that what is misspelt weakens nothing.
[[nodiscard]] TlsMode tlsModeOf(const QString &word);

/// The file of the certificate authorities that must vouch for a server: the host's own, or the one that the
/// user keeps for this purpose (~/.postgresql/root.crt). There is no such file where nobody must.
[[nodiscard]] QString rootCertificates(TlsMode mode);

} // namespace oblino
