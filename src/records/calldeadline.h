#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace oblino {

/// Keeps the calls on a connection from waiting for ever: it cuts the connection, and the call that waits
/// fails. May be used from any thread.
class CallDeadline
{
public:
    explicit CallDeadline(std::chrono::milliseconds limit);
    CallDeadline(const CallDeadline &) = delete;
    CallDeadline &operator=(const CallDeadline &) = delete;
    ~CallDeadline();

    /// A call begins that may take as long as the limit.
    /// @param socket  a descriptor of the connection, which becomes the deadline's own; -1 for none
    void begin(int socket);
    /// It is over. @return whether it was cut
    bool end();
    /// Cuts the connection of the call that is going on, and of those that come.
    void cutAll();

private:
    using Clock = std::chrono::steady_clock;

    void watch();
    void cut();
    void closeSocket();

    std::chrono::milliseconds m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_socket = -1;
    std::optional<Clock::time_point> m_end;
    bool m_wasCut = false;
    bool m_cutsAll = false;
    bool m_stops = false;
    std::thread m_thread;
};

} // namespace oblino
