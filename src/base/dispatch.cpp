#include <base/dispatch.h>

#include <QMetaObject>
#include <QThread>
#include <QThreadPool>

#include <limits>
#include <utility>

namespace oblino {

namespace {

QThreadPool &pool(Dispatch::Priority priority)
{
    const auto configured = [](QThreadPool &made, QThread::Priority threadPriority) {
        made.setThreadPriority(threadPriority);
        made.setMaxThreadCount(std::numeric_limits<int>::max());
        return &made;
    };
    static QThreadPool low;
    static QThreadPool high;
    static QThreadPool *const lowReady = configured(low, QThread::LowPriority);
    static QThreadPool *const highReady = configured(high, QThread::HighPriority);
    return priority == Dispatch::Priority::Low ? *lowReady : *highReady;
}

} // namespace

void Dispatch::main(QObject *context, std::function<void()> work)
{
    QMetaObject::invokeMethod(context, std::move(work), Qt::QueuedConnection);
}

void Dispatch::background(Priority priority, std::function<void()> work)
{
    pool(priority).start(std::move(work));
}

} // namespace oblino
