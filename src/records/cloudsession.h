#pragma once

#include <base/passwordstore.h>
#include <records/cloudaccounts.h>
#include <records/sqlcloudcontainer.h>

#include <QObject>

#include <optional>

namespace oblino {

/// The cloud container of this desktop's account, with the account's password: out of the keyring, or asked
/// for once and then in memory only. A password that the server refuses is needed anew.
class CloudSession : public QObject
{
    Q_OBJECT

public:
    /// Takes the account that is kept, and begins to ask for its password where it has one.
    /// @param recordFile  where the records lie that lie on this machine
    /// @param passwords   must live as long as the session
    CloudSession(CloudAccounts accounts, QString recordFile, PasswordStore &passwords,
                 const QList<const RecordType *> &types);

    [[nodiscard]] CloudContainer &container() { return m_container; }
    [[nodiscard]] const CloudAccount &account() const { return m_account; }
    [[nodiscard]] const QList<const RecordType *> &recordTypes() const { return m_types; }
    /// Where the records of an account lie.
    [[nodiscard]] StoreLocation location(const CloudAccount &account, const QString &password) const;

    /// Whether the account lies on a server and its password is not known, or not yet.
    [[nodiscard]] bool needsPassword() const { return m_account.isRemote() && !m_password; }
    /// The password of the account, where it is known.
    [[nodiscard]] const std::optional<QString> &password() const { return m_password; }
    /// Whether the last password was forgotten because the server refused it.
    [[nodiscard]] bool wasRefused() const { return m_wasRefused; }
    /// Whether the keyring has the password.
    [[nodiscard]] bool isRemembered() const { return m_isRemembered; }
    /// False once it has turned out that there is no keyring.
    [[nodiscard]] bool canRemember() const { return m_canRemember; }

    /// Whether somebody waits for answers of the container, so that the account is not to be changed.
    [[nodiscard]] bool isInUse() const { return m_isInUse; }
    void setInUse(bool inUse);

    /// @param remember  whether the keyring is to keep the password; otherwise it forgets the one it has
    void setPassword(const QString &password, bool remember);
    /// Keeps the account and uses it from now on. Without a password, that of the keyring is used.
    /// @return whether the account is on disk; where not, nothing has changed
    [[nodiscard]] bool setAccount(const CloudAccount &account, const std::optional<QString> &password,
                                  bool remember);

Q_SIGNALS:
    /// What is known of the password, or of the keyring, may be another.
    void passwordChanged();
    void inUseChanged();
    /// The keyring did not take the password.
    void rememberingFailed();

private:
    void startWithoutPassword(bool remembered);
    void readPassword();
    void usePassword(const QString &password);
    void dropRefusedPassword(const StoreLocation &used);
    void remember(const QString &password);
    void deletePassword();

    CloudAccounts m_accounts;
    QString m_recordFile;
    PasswordStore &m_passwords;
    QList<const RecordType *> m_types;
    CloudAccount m_account;
    std::optional<QString> m_password;
    bool m_wasRefused = false;
    bool m_isRemembered = false;
    bool m_canRemember = true;
    bool m_isInUse = false;
    int m_question = 0; // the last one that the keyring was asked, or that needs no answer any more
    SqlCloudContainer m_container;
};

} // namespace oblino
