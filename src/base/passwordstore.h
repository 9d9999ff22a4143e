#pragma once

#include <QString>

#include <functional>

namespace oblino {

/// Keeps passwords safely under a key. Every request returns at once; its handler is called later, once, on
/// the main thread, possibly after the user was asked for leave.
class PasswordStore
{
public:
    enum class Outcome {
        Done,
        NoneStored, ///< there is no password under the key
        NoKeyring,  ///< there is no store that can be used, or the user denied its use
    };

    using ReadHandler = std::function<void(Outcome outcome, const QString &password)>;
    using Handler = std::function<void(Outcome outcome)>;

    PasswordStore() = default;
    PasswordStore(const PasswordStore &) = delete;
    PasswordStore &operator=(const PasswordStore &) = delete;
    virtual ~PasswordStore() = default;

    virtual void read(const QString &key, ReadHandler handler) = 0;
    /// Keeps a password, in place of one that is there.
    virtual void write(const QString &key, const QString &password, Handler handler) = 0;
    virtual void remove(const QString &key, Handler handler) = 0;
};

} // namespace oblino
