#pragma once

#include <support/cloudengine.h>

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <csignal>

namespace oblino {

/// A PostgreSQL server of a test's own on the loopback interface, gone with the test. It speaks TLS with a
/// certificate for "localhost". Functions throw std::runtime_error where the server does not do its part.
class PostgresServer : public CloudEngine
{
public:
    /// The user to whom new databases belong.
    static inline const QString user = QStringLiteral("anna");
    /// The password of all users; with what has a meaning of its own where it is passed on.
    static inline const QString password = QStringLiteral("it's a \\ \"secret\";");

    [[nodiscard]] static bool isInstalled();

    /// Makes the data and starts.
    PostgresServer();
    ~PostgresServer() override;

    /// Starts again, on the same data and the same port.
    void start();
    /// Stops as in a crash, without saying goodbye to anybody.
    void stop();
    /// All its processes stand still: connections stay, nothing is answered.
    void suspend() { signal(SIGSTOP); }
    void resume() { signal(SIGCONT); }

    /// An empty database of the user's.
    [[nodiscard]] RecordPlace newPlace() override { return newPlace({}); }
    /// @param options  of CREATE DATABASE
    [[nodiscard]] RecordPlace newPlace(const QString &options);
    /// As a superuser, whoever the place's user is.
    [[nodiscard]] SecondConnection connectTo(const RecordPlace &place) override;

    /// The file of the authority that vouches for its certificate.
    [[nodiscard]] QString rootCertificate() const { return m_folder.filePath(QStringLiteral("tls.crt")); }

private:
    void makeData();
    void signal(int number);

    QTemporaryDir m_folder;
    QProcess m_server;
    quint16 m_port = 0;
    int m_databases = 0;
};

} // namespace oblino
