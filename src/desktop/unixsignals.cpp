#include <desktop/unixsignals.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace oblino {

namespace {

constexpr std::array endingSignals = {SIGTERM, SIGINT, SIGHUP};

// Lock-free, as a signal handler needs them.
std::atomic<int> writeEnd = -1;
std::atomic<unsigned> timeToEnd = 0; // seconds
std::atomic<bool> isEnding = false;

void handle(int)
{
    const int before = errno;
    if (!isEnding.exchange(true)) // the first signal counts
        ::alarm(timeToEnd.load());
    const char byte = 0;
    if (::write(writeEnd.load(), &byte, 1) < 0) {
        // The pipe is full: the event loop knows already.
    }
    errno = before;
}

void setHandler(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(number, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals(QObject *parent, unsigned secondsToEnd)
    : QObject(parent)
    , m_notifier(QSocketNotifier::Read)
{
    if (::pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    writeEnd = m_ends[1];
    timeToEnd = secondsToEnd;
    isEnding = false;
    m_notifier.setSocket(m_ends[0]);
    connect(&m_notifier, &QSocketNotifier::activated, this, &UnixSignals::take);
    for (const int number : endingSignals)
        setHandler(number, handle);
    setHandler(SIGPIPE, SIG_IGN); // whoever reads the traces may go away
}

void UnixSignals::listen()
{
    m_notifier.setEnabled(m_notifier.isValid());
}

void UnixSignals::extendTime()
{
    if (isEnding.load())
        ::alarm(timeToEnd.load());
}

UnixSignals::~UnixSignals()
{
    for (const int number : endingSignals)
        setHandler(number, SIG_DFL);
    m_notifier.setEnabled(false);
    for (const int end : m_ends)
        ::close(end);
}

void UnixSignals::take()
{
    char bytes[64];
    while (::read(m_ends[0], bytes, sizeof bytes) > 0) {
    }
    Q_EMIT endRequested();
}

} // namespace oblino
