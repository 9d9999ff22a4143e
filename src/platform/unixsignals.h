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
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

Q_SIGNALS:
    void endRequested();

private:
    void take();

    int m_ends[2] = {-1, -1}; // of a pipe: read, write
    QSocketNotifier m_notifier;
};

} // namespace oblino
