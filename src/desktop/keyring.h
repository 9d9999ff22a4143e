#pragma once

#include <base/passwordstore.h>

namespace oblino {

/// The keyring of the desktop. Nothing is ever kept elsewhere where there is none.
class Keyring : public PasswordStore
{
public:
    /// @param service  the name under which the keyring lists the passwords
    explicit Keyring(QString service);

    void read(const QString &key, ReadHandler handler) override;
    void write(const QString &key, const QString &password, Handler handler) override;
    void remove(const QString &key, Handler handler) override;

private:
    QString m_service;
};

} // namespace oblino
