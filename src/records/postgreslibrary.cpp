#include <records/postgreslibrary.h>

#include <QLibrary>

#include <optional>

namespace oblino {

namespace {

template<typename Function>
bool resolve(QLibrary &library, Function &function, const char *name)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

std::optional<PostgresLibrary> loaded()
{
    QLibrary library(QStringLiteral("pq"), 5);
    // Else Qt unloads it at the end of the program, perhaps under a thread that still looks up a host.
    library.setLoadHints(QLibrary::PreventUnloadHint);
    PostgresLibrary pq;
    const bool complete =
        resolve(library, pq.connectStartParams, "PQconnectStartParams") &&
        resolve(library, pq.connectPoll, "PQconnectPoll") && resolve(library, pq.status, "PQstatus") &&
        resolve(library, pq.socket, "PQsocket") && resolve(library, pq.errorMessage, "PQerrorMessage") &&
        resolve(library, pq.setErrorVerbosity, "PQsetErrorVerbosity") &&
        resolve(library, pq.needsPassword, "PQconnectionNeedsPassword") &&
        resolve(library, pq.finish, "PQfinish");
    return complete ? std::optional(pq) : std::nullopt;
}

} // namespace

const PostgresLibrary *PostgresLibrary::get()
{
    static const std::optional<PostgresLibrary> library = loaded();
    return library ? &*library : nullptr;
}

} // namespace oblino
