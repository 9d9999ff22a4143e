#pragma once

#include <support/secondconnection.h>

#include <QProcess>
#include <QTemporaryDir>

namespace oblino {

/// A PostgreSQL server of a test's own on the loopback interface, gone with the test. It speaks TLS with a
/// certificate for "localhost". Functions throw std::runtime_error where the server does not do its part.
class PostgresServer
{
public:
    /// The user to whom new databases belong.
    static inline const QString user = QStringLiteral("anna");
    /// A user who owns nothing.
    static inline const QString stranger = QStringLiteral("berta");
    /// The password of both; with what has a meaning of its own where it is passed on.
    static inline const QString password = QStringLiteral("it's a \\ \"secret\";");

    [[nodiscard]] static bool isInstalled();

    /// Makes the data and starts.
    PostgresServer();
    PostgresServer(const PostgresServer &) = delete;
    PostgresServer &operator=(const PostgresServer &) = delete;
    ~PostgresServer();

    /// Starts again, on the same data and the same port.
    void start();
    /// Stops as in a crash, without saying goodbye to anybody.
    void stop();

    /// An empty database of the user's.
    /// @param options  of CREATE DATABASE
    [[nodiscard]] StoreLocation newPlace(const QString &options = {});

    /// The file of the authority that vouches for its certificate.
    [[nodiscard]] QString rootCertificate() const { return m_folder.filePath(QStringLiteral("tls.crt")); }

private:
    [[nodiscard]] StoreLocation place(const QString &database) const;
    void makeData();

    QTemporaryDir m_folder;
    QProcess m_server;
    quint16 m_port = 0;
    int m_databases = 0;
};

} // namespace oblino
