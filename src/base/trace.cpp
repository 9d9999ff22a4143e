#include <base/trace.h>

#include <QAbstractEventDispatcher>
#include <QMutex>
#include <QStringEncoder>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>

namespace oblino {

namespace {

constexpr qsizetype flushAt = 1 << 20; // bytes
constexpr qsizetype dropAt = 16 << 20; // bytes waiting for a reader that does not read
constexpr size_t pipeAtomic = 4096;    // a pipe that polls writable takes this much without waiting

// The service manager names the stream to the system's log by device and inode, in decimal.
bool isSystemLog(const struct stat &status)
{
    const QByteArray own =
        QByteArray::number(quint64{status.st_dev}) + ':' + QByteArray::number(quint64{status.st_ino});
    return qgetenv("JOURNAL_STREAM") == own;
}

bool goesSomewhere(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || isSystemLog(status))
        return false;
    const bool nullDevice =
        S_ISCHR(status.st_mode) && major(status.st_rdev) == 1 && minor(status.st_rdev) == 3;
    return !nullDevice;
}

struct Output
{
    Output() { setDescriptor(STDOUT_FILENO); }
    ~Output()
    {
        write();
        closeTerminal();
    }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    void setDescriptor(int newDescriptor)
    {
        closeTerminal();
        descriptor = newDescriptor;
        if (::isatty(descriptor) == 1)
            openTerminal();
        struct stat status = {};
        regularFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
        wanted = goesSomewhere(descriptor);
    }

    // A terminal that polls writable can still make a writer wait. Only a description of our own may be told
    // not to: the other one is shared with the shell.
    void openTerminal()
    {
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(descriptor);
        terminal = ::open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (terminal >= 0)
            descriptor = terminal;
    }

    void closeTerminal()
    {
        if (terminal >= 0)
            ::close(std::exchange(terminal, -1));
    }

    bool readyToTake() const
    {
        pollfd poll = {descriptor, POLLOUT, 0};
        return regularFile || (::poll(&poll, 1, 0) == 1 && (poll.revents & POLLOUT) != 0);
    }

    void write()
    {
        qsizetype done = 0;
        while (done < buffer.size() && readyToTake()) {
            const auto rest = static_cast<size_t>(buffer.size() - done);
            const ssize_t written = ::write(descriptor, buffer.constData() + done,
                                            regularFile ? rest : std::min(rest, pipeAtomic));
            if (written > 0)
                done += written;
            else if (errno == EAGAIN)
                break;
            else if (errno != EINTR)
                return stop();
        }
        buffer.remove(0, done);
    }

    void stop()
    {
        wanted = false;
        buffer.clear();
    }

    QMutex mutex;
    QByteArray buffer;
    int descriptor = -1;
    int terminal = -1; // opened here
    bool regularFile = false;
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
    out.buffer += line;
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
    out.write();
    out.buffer.clear();
    out.setDescriptor(descriptor);
}

void appendTrace(QByteArray &line, bool value)
{
    line += value ? "true" : "false";
}

void appendTrace(QByteArray &line, qint64 value)
{
    std::array<char, 20> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    line.append(digits.data(), end - digits.data());
}

void appendTrace(QByteArray &line, double value)
{
    line += QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

void appendTrace(QByteArray &line, const char *value)
{
    line += value;
}

void appendTrace(QByteArray &line, const QByteArray &value)
{
    line += value;
}

void appendTrace(QByteArray &line, QStringView value)
{
    constexpr qsizetype bytesPerUnit = 3;
    const qsizetype size = line.size();
    line.resize(size + value.size() * bytesPerUnit);
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    line.truncate(encoder.appendToBuffer(line.data() + size, value) - line.constData());
}

void appendTrace(QByteArray &line, const QDateTime &value)
{
    line += value.toString(Qt::ISODate).toUtf8();
}

} // namespace oblino
