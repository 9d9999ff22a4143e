#include <records/cloudsession.h>

#include <base/dispatch.h>

#include <QPointer>

#include <utility>

namespace oblino {

using Outcome = PasswordStore::Outcome;

namespace {

QString keyOf(const CloudAccount &account)
{
    return QStringLiteral("%1@%2:%3/%4")
        .arg(account.user, account.host, QString::number(account.port), account.database);
}

} // namespace

CloudSession::CloudSession(CloudAccounts accounts, QString recordFile, PasswordStore &passwords,
                           const QList<const RecordType *> &types)
    : m_accounts(std::move(accounts))
    , m_recordFile(std::move(recordFile))
    , m_passwords(passwords)
    , m_types(types)
    , m_account(m_accounts.load())
    , m_container(location(m_account, {}), types)
{
    m_container.setOnLoginRefused([this](const StoreLocation &used) {
        Dispatch::main(this, [this, used] { dropRefusedPassword(used); });
    });
    if (m_account.isRemote())
        readPassword();
}

StoreLocation CloudSession::location(const CloudAccount &account, const QString &password) const
{
    return {m_recordFile, account, password};
}

void CloudSession::setInUse(bool inUse)
{
    if (std::exchange(m_isInUse, inUse) != inUse)
        Q_EMIT inUseChanged();
}

void CloudSession::setPassword(const QString &password, bool remembered)
{
    ++m_question; // an answer that is still to come is out of date
    if (remembered)
        remember(password);
    else if (m_isRemembered)
        deletePassword();
    usePassword(password);
}

bool CloudSession::setAccount(const CloudAccount &account, const std::optional<QString> &password,
                              bool remembered)
{
    if (!m_accounts.save(account))
        return false;
    // Of an account that was in use before, the keyring may have an older password.
    const bool isOther = keyOf(account) != keyOf(m_account);
    m_isRemembered = isOther ? password.has_value() : m_isRemembered;
    m_account = account;
    if (account.isRemote() && password)
        setPassword(*password, remembered);
    else
        startWithoutPassword(remembered);
    return true;
}

void CloudSession::startWithoutPassword(bool remembered)
{
    ++m_question;
    m_password.reset();
    m_wasRefused = false;
    if (m_isRemembered && !remembered)
        deletePassword();
    m_isRemembered = false;
    m_container.setLocation(location(m_account, {}));
    if (m_account.isRemote())
        readPassword();
    Q_EMIT passwordChanged();
}

void CloudSession::readPassword()
{
    m_passwords.read(keyOf(m_account), [session = QPointer(this),
                                        question = ++m_question](Outcome outcome, const QString &password) {
        if (!session || session->m_question != question)
            return;
        session->m_canRemember = outcome != Outcome::NoKeyring;
        session->m_isRemembered = outcome == Outcome::Done;
        if (session->m_isRemembered)
            session->usePassword(password);
        else
            Q_EMIT session->passwordChanged();
    });
}

void CloudSession::usePassword(const QString &password)
{
    m_password = password;
    m_wasRefused = false;
    m_container.setLocation(location(m_account, password));
    Q_EMIT passwordChanged();
}

// The keyring's stays until the user has typed another, and said whether that is to be kept.
void CloudSession::dropRefusedPassword(const StoreLocation &used)
{
    if (used.account != m_account || m_password != used.password)
        return;
    m_password.reset();
    m_wasRefused = true;
    Q_EMIT passwordChanged();
}

void CloudSession::remember(const QString &password)
{
    m_isRemembered = true;
    m_passwords.write(keyOf(m_account), password,
                      [session = QPointer(this), question = ++m_question](Outcome outcome) {
                          if (!session || outcome == Outcome::Done)
                              return;
                          if (session->m_question == question) {
                              session->m_isRemembered = false;
                              session->m_canRemember = outcome != Outcome::NoKeyring;
                          }
                          Q_EMIT session->rememberingFailed();
                      });
}

void CloudSession::deletePassword()
{
    m_isRemembered = false;
    m_passwords.remove(keyOf(m_account), [](Outcome) {});
}

} // namespace oblino
