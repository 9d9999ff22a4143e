#include <records/postgresprobe.h>

#include <records/postgreslibrary.h>

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <poll.h>

#include <memory>
#include <vector>

namespace oblino {

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;
using Connection = std::unique_ptr<PGconn, decltype(PostgresLibrary::finish)>;

QString tr(const char *text)
{
    return QCoreApplication::translate("CloudAccount", text);
}

Connection start(const PostgresLibrary &pq, const CloudAccount &account, const QString &password,
                 std::chrono::milliseconds timeout)
{
    QList<std::pair<QByteArray, QByteArray>> parameters = connectOptions(account, timeout);
    parameters += {{"host", account.host.toUtf8()},
                   {"port", QByteArray::number(account.port)},
                   {"dbname", account.database.toUtf8()},
                   {"user", account.user.toUtf8()},
                   {"password", password.toUtf8()}};
    std::vector<const char *> names;
    std::vector<const char *> values;
    for (const auto &[name, value] : std::as_const(parameters)) {
        names.push_back(name.constData());
        values.push_back(value.constData());
    }
    names.push_back(nullptr);
    values.push_back(nullptr);
    Connection connection(pq.connectStartParams(names.data(), values.data(), 0), pq.finish);
    // The words of a server come in its own language; the code before them does not.
    if (connection)
        pq.setErrorVerbosity(connection.get(), PQERRORS_VERBOSE);
    return connection;
}

// @return the state in which the attempt ended, PGRES_POLLING_READING where time ran out
PostgresPollingStatusType complete(const PostgresLibrary &pq, PGconn *connection, Clock::time_point end,
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
            (tr("The server %1 cannot be reached on port %2.").arg(account.host).arg(account.port) +
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
                    ? tr("Wrong password: the server refused the user name or the password.")
                    : tr("The server refused the sign-in: %1").arg(match.captured(2))};
    case CloudError::Code::RightsRefused:
        return {CloudError::Code::RightsRefused,
                tr("The user has no right to use the database %1.").arg(account.database)};
    case CloudError::Code::Unreachable:
    case CloudError::Code::Other:
        break;
    }
    if (state == QLatin1String("3D000"))
        return {CloudError::Code::Other, tr("The server has no database named %1.").arg(account.database)};
    return {codeOfState(state), tr("The server says: %1").arg(match.captured(2))};
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

QList<std::pair<QByteArray, QByteArray>> connectOptions(const CloudAccount &account,
                                                        std::chrono::milliseconds timeout)
{
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(timeout).count();
    return {{"sslmode", wordOf(account.tlsMode).data()},
            {"sslrootcert", QFile::encodeName(rootCertificates(account.tlsMode))},
            {"target_session_attrs", "read-write"},
            {"connect_timeout", QByteArray::number(seconds)},
            {"tcp_user_timeout", QByteArray::number(timeout.count())}}; // of a connection that is gone unseen
}

void probePostgres(const CloudAccount &account, const QString &password, std::chrono::milliseconds timeout,
                   const std::atomic<bool> &cancelled)
{
    const Clock::time_point end = Clock::now() + timeout;
    const PostgresLibrary *pq = PostgresLibrary::get();
    if (!pq)
        throw CloudError{CloudError::Code::Other, tr("The PostgreSQL library (libpq5) is not installed.")};
    const Connection connection = start(*pq, account, password, timeout);
    const auto message = [&] {
        return connection ? QString::fromUtf8(pq->errorMessage(connection.get())) : QString();
    };
    if (!connection || pq->status(connection.get()) == CONNECTION_BAD)
        throw unreachable(account, onOneLine(message()));
    switch (complete(*pq, connection.get(), end, cancelled)) {
    case PGRES_POLLING_OK:
        return;
    case PGRES_POLLING_FAILED:
        if (pq->needsPassword(connection.get()))
            throw CloudError{CloudError::Code::LoginRefused, tr("The server asks for a password.")};
        throw errorOf(account, message());
    default:
        throw unreachable(account, tr("It does not answer."));
    }
}

} // namespace oblino
