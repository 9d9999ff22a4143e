#pragma once

#include <base/passwordstore.h>

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
        m_waiting.append(
            [this, key, handler] { handler(outcome(passwords.contains(key)), passwords.value(key)); });
    }
    void write(const QString &key, const QString &password, Handler handler) override
    {
        m_waiting.append([this, key, password, handler] {
            if (exists)
                passwords.insert(key, password);
            handler(outcome(true));
        });
    }
    void remove(const QString &key, Handler handler) override
    {
        m_waiting.append([this, key, handler] { handler(outcome(passwords.remove(key) > 0)); });
    }

    /// Answers what was asked so far, in order.
    void answer()
    {
        for (const auto &request : std::exchange(m_waiting, {}))
            request();
    }

private:
    [[nodiscard]] Outcome outcome(bool hasIt) const
    {
        return !exists ? Outcome::NoKeyring : hasIt ? Outcome::Done : Outcome::NoneStored;
    }

    QList<std::function<void()>> m_waiting;
};

} // namespace oblino
