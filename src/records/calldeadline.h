#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace oblino {

/// Keeps the calls on a connection from waiting for ever while it lives: it shuts the connection down when
/// they have taken as long as the limit, or when they are cancelled, and the call that waits fails. None of
/// libpq's own time-outs does that: the system of a server that hangs goes on to acknowledge what it gets.
class CallDeadline
{
public:
    /// @param socket  a descriptor of the connection, which becomes the deadline's own; -1 for none
    CallDeadline(int socket, std::chrono::milliseconds limit, const std::atomic<bool> &cancelled);
    CallDeadline(const CallDeadline &) = delete;
    CallDeadline &operator=(const CallDeadline &) = delete;
    ~CallDeadline();

    [[nodiscard]] bool wasCut() const { return m_wasCut; }

private:
    void watch(const std::stop_token &stop, std::chrono::milliseconds limit,
               const std::atomic<bool> &cancelled);

    int m_socket;
    std::atomic<bool> m_wasCut = false;
    std::mutex m_mutex;
    std::condition_variable_any m_stopped;
    std::jthread m_thread;
};

} // namespace oblino
