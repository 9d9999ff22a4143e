
#include <support/test.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// A terminal of a test's own, which shows what is written as it is.
struct Terminal
{
    Terminal()
    {
        termios mode = {};
        ::cfmakeraw(&mode);
        if (::openpty(&reader, &writer, nullptr, &mode, nullptr) != 0)
            qFatal("no terminal");
    }
    ~Terminal()
    {
        ::close(reader);
        ::close(writer);
    }
    int reader = -1;
    int writer = -1;
};

QByteArray readFrom(int descriptor)
{
    QByteArray part(65536, '\0');
    return part.first(qMax<ssize_t>(0, ::read(descriptor, part.data(), 65536)));
}

} // namespace

class tst_trace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // In the system's log the texts of tasks would be kept, for longer and for more readers than the user
    // thinks.
    void evaluatesOnlyWhatSomebodyReads()
    {
        struct stat zero = {};
        QCOMPARE(::stat("/dev/zero", &zero), 0);
        const QByteArray log = QByteArray::number(quint64(zero.st_dev)) + ':';
        const QByteArray inode = QByteArray::number(quint64(zero.st_ino));
        for (const auto &[path, journal, expected] : {std::tuple("/dev/null", ""_ba, 0),
                                                      {"/no/such/file", "", 0},
                                                      {"/dev/zero", "", 1},
                                                      {"/dev/zero", log + inode, 0},
                                                      {"/dev/zero", log + '1' + inode, 1},
                                                      {"/dev/zero", '1' + log + inode, 1}}) {
            qputenv("JOURNAL_STREAM", journal);
            QFile file(QString::fromLatin1(path));
            Trace::setDescriptor(file.open(QIODevice::WriteOnly) ? file.handle() : -1);
            int calls = 0;
            trace("x", [&calls] { return ++calls; });
            Trace::setDescriptor(STDOUT_FILENO);
            QCOMPARE(calls, expected);
        }
        qunsetenv("JOURNAL_STREAM");
    }

    void keepsABoundedNumberOfWholeLinesForASlowReader()
    {
        const QByteArray line(1023, 'x');
        int pipe[2] = {-1, -1};
        QCOMPARE(::pipe2(pipe, O_CLOEXEC), 0);
        const Terminal terminal;
        for (const auto &[reader, writer] :
             {std::pair(pipe[0], pipe[1]), {terminal.reader, terminal.writer}}) {
            ::fcntl(reader, F_SETFL, O_NONBLOCK);
            Trace::setDescriptor(writer);
            for (int i = 0; i < 24 * 1024; ++i)
                trace(line);
            QByteArray received;
            for (QByteArray part = "-"; !part.isEmpty(); Trace::flush()) {
                part = readFrom(reader);
                received += part;
            }
            Trace::setDescriptor(STDOUT_FILENO);
            const qsizetype size = received.size();
            QVERIFY2(size > 15 << 20 && size < 17 << 20, QByteArray::number(size));
            QVERIFY(received == (line + '\n').repeated(size / 1024));
        }
        ::close(pipe[0]);
        ::close(pipe[1]);
    }

    void aTerminalIsNotMovedByATextAndMayGo()
    {
        Terminal terminal;
        Trace::setDescriptor(terminal.writer);
        trace("Café\t\x1b[2J\r\b\x7f", u"\u009b1A"_s, "\xff\x9b", QByteArray("\0.", 2), "two\nlines");
        Trace::flush();
        QCOMPARE(readFrom(terminal.reader), "Café\t␛[2J␍␈␡ \ufffd1A \ufffd\ufffd ␀. two\nlines\n");
        ::close(std::exchange(terminal.reader, -1));
        for (int i = 0; i < 24 * 1024; ++i)
            trace(QByteArray(1023, 'x'));
        Trace::flush();
        QVERIFY(!Trace::enabled());
        Trace::setDescriptor(STDOUT_FILENO);
    }
};

OBLINO_TEST(tst_trace, QCoreApplication)

#include "tst_trace.moc"
