#pragma once

#include <QObject>

#include <functional>

namespace oblino {

/// Work for other threads and for later.
class Dispatch
{
public:
    enum class Priority { Low, High };

    /// Runs `work` on the main thread as soon as it is free, in the order of the calls; not at all once
    /// `context` is gone. `context` must live on the main thread.
    static void main(QObject *context, std::function<void()> work);

    /// Runs `work` on a background thread of that priority. Each piece of work has a thread of its own, so
    /// work that waits keeps no other from running.
    static void background(Priority priority, std::function<void()> work);
};

} // namespace oblino
