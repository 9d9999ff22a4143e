#include <records/calldeadline.h>

#include <sys/socket.h>
#include <unistd.h>

namespace oblino {

CallDeadline::CallDeadline(std::chrono::milliseconds limit)
    : m_limit(limit)
    , m_thread([this] { watch(); })
{
}

CallDeadline::~CallDeadline()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stops = true;
    }
    m_changed.notify_all();
    m_thread.join();
    closeSocket();
}

void CallDeadline::begin(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_socket = socket;
    m_wasCut = false;
    m_end = Clock::now() + m_limit;
    if (m_cutsAll)
        cut();
    m_changed.notify_all();
}

bool CallDeadline::end()
{
    const std::lock_guard lock(m_mutex);
    closeSocket();
    m_changed.notify_all();
    return m_wasCut;
}

void CallDeadline::cutAll()
{
    const std::lock_guard lock(m_mutex);
    m_cutsAll = true;
    cut();
}

void CallDeadline::watch()
{
    std::unique_lock lock(m_mutex);
    while (!m_stops) {
        if (!m_end) {
            m_changed.wait(lock);
        } else if (m_changed.wait_until(lock, *m_end) == std::cv_status::timeout && m_end &&
                   Clock::now() >= *m_end) {
            cut();
            m_end.reset();
        }
    }
}

// Its socket is a duplicate: the connection itself may already have closed its own and the number be in use
// for something else.
void CallDeadline::cut()
{
    m_wasCut = true;
    if (m_socket >= 0)
        ::shutdown(m_socket, SHUT_RDWR);
}

void CallDeadline::closeSocket()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
    m_end.reset();
}

} // namespace oblino
