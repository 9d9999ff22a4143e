#pragma once

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QObject>
#include <QString>

namespace oblino {

/// Sees to it that one program at a time works on a user's data. The claim is a lock on a file in the private
/// folder, which the system takes back when the process ends however it ends.
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
    [[nodiscard]] QString socketName() const;
    [[nodiscard]] bool raiseOther(const QDeadlineTimer &deadline) const;
    void answer();

    QString m_privateFolder;
    int m_lockFile = -1;
    QLocalServer m_server;
};

} // namespace oblino
