#include <records/postgresprobe.h>

#include <records/postgreslibrary.h>

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <poll.h>

#include <algorithm>
#include <array>
#include <memory>

namespace oblino {

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;
using Connection = std::unique_ptr<PGconn, decltype(PostgresLibrary::finish)>;

QString words(const char *text)
{
    return QCoreApplication::translate("CloudAccount", text);
}

Connection start(const PostgresLibrary &pq, const CloudAccount &account, const QString &password)
{
    const QByteArray host = account.host.toUtf8();
    const QByteArray port = QByteArray::number(account.port);
    const QByteArray database = account.database.toUtf8();
    const QByteArray user = account.user.toUtf8();
    const QByteArray secret = password.toUtf8();
    const QByteArray certificates = QFile::encodeName(rootCertificates(account.tlsMode));
    const std::array names = {"host",
                              "port",
                              "dbname",
                              "user",
                              "password",
                              "sslmode",
                              "sslrootcert",
                              "target_session_attrs",
                              static_cast<const char *>(nullptr)};
    const std::array values = {
        host.constData(),         port.constData(),   database.constData(),
        user.constData(),         secret.constData(), wordOf(account.tlsMode).data(),
        certificates.constData(), "read-write",       static_cast<const char *>(nullptr)};
    Connection connection(pq.connectStartParams(names.data(), values.data(), 0), pq.finish);
    // The words of a server come in its own language; the code before them does not.
    if (connection)
        pq.setErrorVerbosity(connection.get(), PQERRORS_VERBOSE);
    return connection;
}

// @return the state in which the attempt ended, PGRES_POLLING_READING where time ran out
PostgresPollingStatusType settle(const PostgresLibrary &pq, PGconn *connection, Clock::time_point end,
                                 const std::atomic<bool> &cancelled)
{
    PostgresPollingStatusType state = PGRES_POLLING_WRITING;
    while (state == PGRES_POLLING_READING || state == PGRES_POLLING_WRITING) {
        if (cancelled || Clock::now() >= end)
            return PGRES_POLLING_READING;
        const short events = state == PGRES_POLLING_READING ? POLLIN : POLLOUT;
        pollfd waiting = {.fd = pq.socket(connection), .events = events, .revents = 0};
        constexpr int glance = 100; // ms, after which `cancelled` is looked at
        if (::poll(&waiting, 1, glance) > 0)
            state = pq.connectPoll(connection);
    }
    return state;
}

// libpq puts what it supposes on a line of its own, without an end to the sentence before.
QString onOneLine(QString message)
{
    return message.replace(QLatin1String("\n\t"), QLatin1String(". ")).simplified();
}

CloudError unreachable(const CloudAccount &account, const QString &detail)
{
    return {CloudError::Code::Unreachable,
            (words("The server %1 cannot be reached on port %2.").arg(account.host).arg(account.port) +
             QLatin1Char(' ') + detail)
                .trimmed()};
}

CloudError errorOf(const CloudAccount &account, const QString &message)
{
    // A code has a digit, unlike the severity before it, as in "failed: FATAL:  28P01: ".
    static const QRegularExpression coded(QStringLiteral(":\\s+((?=[A-Z]*[0-9])[0-9A-Z]{5}): *([^\\n]*)"));
    const QRegularExpressionMatch match = coded.match(message);
    if (!match.hasMatch())
        return unreachable(account, onOneLine(message));
    const QString state = match.captured(1);
    switch (codeOfState(state)) {
    case CloudError::Code::LoginRefused:
        return {CloudError::Code::LoginRefused,
                state == QLatin1String("28P01")
                    ? words("Wrong password: the server refused the user name or the password.")
                    : words("The server refused the sign-in: %1").arg(match.captured(2))};
    case CloudError::Code::RightsRefused:
        return {CloudError::Code::RightsRefused,
                words("The user has no right to use the database %1.").arg(account.database)};
    case CloudError::Code::Unreachable:
    case CloudError::Code::Other:
        break;
    }
    if (state == QLatin1String("3D000"))
        return {CloudError::Code::Other, words("The server has no database named %1.").arg(account.database)};
    return {codeOfState(state), words("The server says: %1").arg(match.captured(2))};
}

} // namespace

CloudError::Code codeOfState(const QString &sqlState)
{
    if (sqlState.startsWith(QLatin1String("28"))) // invalid authorisation
        return CloudError::Code::LoginRefused;
    if (sqlState == QLatin1String("42501")) // insufficient privilege
        return CloudError::Code::RightsRefused;
    for (const auto *unreachable : {"08", "53", "57P"}) { // connection, resources, shutting down
        if (sqlState.startsWith(QLatin1String(unreachable)))
            return CloudError::Code::Unreachable;
    }
    return CloudError::Code::Other;
}

std::optional<CloudError> probePostgres(const CloudAccount &account, const QString &password,
                                        std::chrono::milliseconds timeout, const std::atomic<bool> &cancelled)
{
    const Clock::time_point end = Clock::now() + timeout;
    const PostgresLibrary *pq = PostgresLibrary::get();
    if (!pq)
        return CloudError{CloudError::Code::Other,
                          words("The PostgreSQL library (libpq5) is not installed.")};
    const Connection connection = start(*pq, account, password);
    if (!connection || pq->status(connection.get()) == CONNECTION_BAD) {
        const QString message =
            connection ? QString::fromUtf8(pq->errorMessage(connection.get())) : QString();
        return unreachable(account, onOneLine(message));
    }
    switch (settle(*pq, connection.get(), end, cancelled)) {
    case PGRES_POLLING_OK:
        return std::nullopt;
    case PGRES_POLLING_FAILED:
        if (pq->needsPassword(connection.get()))
            return CloudError{CloudError::Code::LoginRefused, words("The server asks for a password.")};
        return errorOf(account, QString::fromUtf8(pq->errorMessage(connection.get())));
    default:
        return unreachable(account, words("It does not answer."));
    }
}

} // namespace oblino
