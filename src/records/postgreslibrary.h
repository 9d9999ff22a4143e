#pragma once

#include <libpq-fe.h>

namespace oblino {

/// The functions of libpq that are used besides the SQL driver. The library is loaded when they are first
/// asked for: it brings a score of others with it, and most users have no server.
struct PostgresLibrary
{
    decltype(&PQconnectStartParams) connectStartParams = nullptr;
    decltype(&PQconnectPoll) connectPoll = nullptr;
    decltype(&PQstatus) status = nullptr;
    decltype(&PQsocket) socket = nullptr;
    decltype(&PQerrorMessage) errorMessage = nullptr;
    decltype(&PQsetErrorVerbosity) setErrorVerbosity = nullptr;
    decltype(&PQconnectionNeedsPassword) needsPassword = nullptr;
    decltype(&PQfinish) finish = nullptr;

    /// Null where the library cannot be loaded. Safe to call from any thread.
    [[nodiscard]] static const PostgresLibrary *get();
};

} // namespace oblino
