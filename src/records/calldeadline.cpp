#include <records/calldeadline.h>

#include <sys/socket.h>
#include <unistd.h>

namespace oblino {

using namespace std::chrono_literals;

CallDeadline::CallDeadline(int socket, std::chrono::milliseconds limit, const std::atomic<bool> &cancelled)
    : m_socket(socket)
{
    if (socket >= 0)
        m_thread = std::jthread(
            [this, limit, &cancelled](const std::stop_token &stop) { watch(stop, limit, cancelled); });
}

CallDeadline::~CallDeadline()
{
    m_thread = {}; // stopped and joined
    if (m_socket >= 0)
        ::close(m_socket);
}

// The descriptor is a duplicate: the connection may already have closed its own, and the number be in use for
// something else.
void CallDeadline::watch(const std::stop_token &stop, std::chrono::milliseconds limit,
                         const std::atomic<bool> &cancelled)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(m_mutex);
    while (!cancelled && std::chrono::steady_clock::now() < end) {
        m_stopped.wait_for(lock, stop, 50ms, [] { return false; });
        if (stop.stop_requested())
            return;
    }
    m_wasCut = true;
    ::shutdown(m_socket, SHUT_RDWR);
}

} // namespace oblino
