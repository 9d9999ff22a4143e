#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace oblino {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal of the event loop. From the moment one arrives the process
/// has 3 s to end by itself, or longer while it says that it goes on; then the system ends it. At most one
/// instance.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Takes signals from now on, and keeps them until listen().
    /// @param secondsToEnd  from a signal to the process's end
    explicit UnixSignals(QObject *parent = nullptr, unsigned secondsToEnd = 3);
    ~UnixSignals() override;

    /// Tells of signals as soon as the event loop runs, those taken before included.
    void listen();

    /// Where a signal has arrived, lets the time to end begin anew. From any thread.
    static void extendTime();

Q_SIGNALS:
    void endRequested();

private:
    void take();

    int m_ends[2] = {-1, -1}; // of a pipe: read, write
    QSocketNotifier m_notifier;
};

} // namespace oblino
