#pragma once

#include <records/cloudaccount.h>

namespace oblino {

/// Where the account of this desktop is kept: a settings file of its own that only the user can read (mode
/// 0600). It never holds a password.
class CloudAccounts
{
public:
    /// @param path  the settings file; it is made when an account is saved
    explicit CloudAccounts(QString path);

    /// The account that was saved; none, which is one without a host, where that says nothing of use.
    [[nodiscard]] CloudAccount load() const;
    /// @return whether the account is on disk
    [[nodiscard]] bool save(const CloudAccount &account) const;

private:
    QString m_path;
};

/// A list of hosts as the connection takes it: separated by commas, without blanks and empty places.
[[nodiscard]] QString normalizedHosts(const QString &hosts);

} // namespace oblino
