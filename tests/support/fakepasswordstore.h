#pragma once

#include <platform/passwordstore.h>

#include <QList>
#include <QMap>

#include <utility>

namespace oblino {

/// A keyring that answers when the test lets it.
class FakePasswordStore : public PasswordStore
{
public:
    bool exists = true;
    QMap<QString, QString> passwords;

    void read(const QString &key, ReadHandler handler) override
    {
        m_waiting.append([this, key, handler] {
            const Outcome found = passwords.contains(key) ? Outcome::Done : Outcome::NoneStored;
            handler(exists ? found : Outcome::NoKeyring, exists ? passwords.value(key) : QString());
        });
    }
    void write(const QString &key, const QString &password, Handler handler) override
    {
        m_waiting.append([this, key, password, handler] {
            if (exists)
                passwords.insert(key, password);
            handler(exists ? Outcome::Done : Outcome::NoKeyring);
        });
    }
    void remove(const QString &key, Handler handler) override
    {
        m_waiting.append([this, key, handler] {
            const bool removed = exists && passwords.remove(key) > 0;
            handler(removed ? Outcome::Done : exists ? Outcome::NoneStored : Outcome::NoKeyring);
        });
    }

    /// Answers what was asked so far, in order.
    void answer()
    {
        const auto waiting = std::exchange(m_waiting, {});
        for (const auto &request : waiting)
            request();
    }

private:
    QList<std::function<void()>> m_waiting;
};

} // namespace oblino
