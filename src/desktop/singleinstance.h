#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class QLocalServer;

namespace oblino {

/// Sees to it that one program at a time works on a user's data. The claim is a lock on a file in the private
/// folder, which the system takes back when the process ends however it ends. The file says where the socket
/// lies at which that process is asked to come to the front: in the session's runtime folder, or in the
/// private folder where there is none.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Claim {
        First,       ///< this process is the only one
        RaisedOther, ///< another runs, and was asked to come to the front
        OtherSilent, ///< another runs and did not answer
    };

    /// @param privateFolder  the program's data folder; it names the data that is guarded
    explicit SingleInstance(QString privateFolder, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Claims the data, or asks the program that has them to raise its window, waiting up to 3 s for it to
    /// answer or to end.
    /// Where no lock can be made (a read-only home) the claim is granted.
    [[nodiscard]] Claim claim();

Q_SIGNALS:
    /// Another process was started and wants this one in front.
    void raiseRequested();

private:
    [[nodiscard]] bool lock();
    void listen();
    [[nodiscard]] bool listenAt(const QString &path);
    /// Where the socket may lie, the best place first.
    [[nodiscard]] QStringList socketPaths() const;
    [[nodiscard]] QString recordedPath() const;
    void record(const QString &path) const;
    [[nodiscard]] bool raiseOther(const QDeadlineTimer &deadline) const;
    void answer();

    QString m_privateFolder;
    int m_lockFile = -1;
    int m_socketFolder = -1; // open where its path is too long
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace oblino
