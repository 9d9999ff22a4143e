#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace oblino {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal of the event loop. From the moment one arrives the process
/// has 3 s to end by itself; then the system ends it. At most one instance.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Takes signals from now on, and keeps them until listen().
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

    /// Tells of signals as soon as the event loop runs, those taken before included.
    void listen();

Q_SIGNALS:
    void endRequested();

private:
    void take();

    int m_ends[2] = {-1, -1}; // of a pipe: read, write
    QSocketNotifier m_notifier;
};

} // namespace oblino
