#include <base/trace.h>

#include <QAbstractEventDispatcher>
#include <QMutex>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace oblino {

namespace {

constexpr qsizetype flushAt = 1 << 20; // bytes
constexpr qsizetype dropAt = 16 << 20; // bytes waiting for a reader that does not read
constexpr qsizetype pipeAtomic = 4096; // bytes; a pipe that polls writable takes this much without waiting

// The null device keeps nothing. The system's log keeps too much; the service manager names the stream to it
// by device and inode, in decimal.
bool isWanted(const struct stat &status)
{
    const QByteArray stream =
        QByteArray::number(quint64{status.st_dev}) + ':' + QByteArray::number(quint64{status.st_ino});
    return qgetenv("JOURNAL_STREAM") != stream &&
           !(S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3));
}

// What moves the cursor of a terminal, or more, as the picture of it: the texts are those of others, too.
QByteArray withoutControls(const QByteArray &line)
{
    QString text = QString::fromUtf8(line);
    for (QChar &character : text) {
        const char16_t code = character.unicode();
        if (code < u' ' && code != u'\n' && code != u'\t')
            character = QChar(u'\u2400' + code);
        else if (code == u'\x7f')
            character = u'\u2421';
        else if (character.category() == QChar::Other_Control && code > u'\x7f')
            character = QChar::ReplacementCharacter;
    }
    return text.toUtf8();
}

struct Output
{
    Output() { setDescriptor(STDOUT_FILENO); }
    ~Output() { setDescriptor(-1); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    void setDescriptor(int newDescriptor)
    {
        write();
        buffer.clear();
        if (terminal >= 0)
            ::close(terminal);
        struct stat status = {};
        wanted = ::fstat(newDescriptor, &status) == 0 && isWanted(status);
        atOnce = S_ISREG(status.st_mode) ? dropAt : pipeAtomic;
        // A terminal that polls writable can still make a writer wait. Only a description of our own may be
        // told not to: the other one is shared with the shell.
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(newDescriptor);
        isTerminal = ::isatty(newDescriptor) == 1;
        terminal = isTerminal ? ::open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) : -1;
        descriptor = terminal >= 0 ? terminal : newDescriptor;
    }

    [[nodiscard]] bool isReady() const
    {
        pollfd poll = {descriptor, POLLOUT, 0};
        return ::poll(&poll, 1, 0) == 1 && (poll.revents & POLLOUT) != 0;
    }

    void write()
    {
        qsizetype done = 0;
        while (done < buffer.size() && isReady()) {
            const auto size = std::min(buffer.size() - done, atOnce);
            const ssize_t written = ::write(descriptor, buffer.constData() + done, static_cast<size_t>(size));
            if (written >= 0) {
                done += written;
            } else if (errno == EAGAIN) {
                break;
            } else if (errno != EINTR) { // nobody reads any more
                wanted = false;
                done = buffer.size();
            }
        }
        buffer.remove(0, done);
    }

    QMutex mutex;
    QByteArray buffer;
    int descriptor = -1;
    qsizetype atOnce = pipeAtomic;
    bool isTerminal = false;
    int terminal = -1; // opened here
    std::atomic<bool> wanted = false;
};

Output &output()
{
    static Output instance;
    return instance;
}

} // namespace

bool Trace::enabled()
{
    return output().wanted.load(std::memory_order_relaxed);
}

void Trace::writeLine(const QByteArray &line)
{
    Output &out = output();
    const QMutexLocker lock(&out.mutex);
    if (out.buffer.size() >= dropAt)
        return;
    out.buffer += out.isTerminal ? withoutControls(line) : line;
    out.buffer += '\n';
    if (out.buffer.size() >= flushAt)
        out.write();
}

void Trace::flush()
{
    Output &out = output();
    const QMutexLocker lock(&out.mutex);
    out.write();
}

void Trace::flushWhenIdle()
{
    if (QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance())
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, dispatcher, &Trace::flush);
}

void Trace::setDescriptor(int descriptor)
{
    Output &out = output();
    const QMutexLocker lock(&out.mutex);
    out.setDescriptor(descriptor);
}

} // namespace oblino
