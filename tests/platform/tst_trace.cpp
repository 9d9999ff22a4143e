#include <support/testmain.h>

#include <platform/trace.h>
#include <platform/unixsignals.h>

#include <QSignalSpy>
#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/mman.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <thread>
#include <vector>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Writes = void (*)();

namespace {

bool hasTerminals()
{
    const int end = ::posix_openpt(O_RDWR | O_NOCTTY);
    const bool has = end >= 0 && ::grantpt(end) == 0 && ::unlockpt(end) == 0;
    ::close(end);
    return has;
}

// Takes the traces at the other end of a file, pipe or terminal, as long as the object lives.
class Reader
{
public:
    explicit Reader(const QByteArray &kind)
    {
        if (kind == "pipe") {
            QVERIFY(::pipe(m_ends.data()) == 0);
        } else if (kind == "file") {
            m_ends[1] = ::memfd_create("traces", 0);
            m_ends[0] = ::open("/proc/self/fd/" + QByteArray::number(m_ends[1]), O_RDONLY);
        } else {
            m_ends[0] = ::posix_openpt(O_RDWR | O_NOCTTY);
            QVERIFY(::grantpt(m_ends[0]) == 0 && ::unlockpt(m_ends[0]) == 0);
            m_ends[1] = ::open(::ptsname(m_ends[0]), O_RDWR | O_NOCTTY);
            termios raw = {};
            ::cfmakeraw(&raw);
            ::tcsetattr(m_ends[1], TCSANOW, &raw);
        }
        ::fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
        Trace::setDescriptor(m_ends[1]);
    }
    ~Reader()
    {
        leave();
        Trace::setDescriptor(STDOUT_FILENO);
        ::close(m_ends[1]);
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    [[nodiscard]] int descriptor() const { return m_ends[0]; }
    void leave() { ::close(std::exchange(m_ends[0], -1)); }

    QByteArray read() const
    {
        QByteArray all;
        std::array<char, 65536> part;
        for (;;) {
            Trace::flush();
            const ssize_t size = ::read(m_ends[0], part.data(), part.size());
            if (size <= 0)
                return all;
            all.append(part.data(), size);
        }
    }

private:
    std::array<int, 2> m_ends = {-1, -1};
};

} // namespace

class tst_trace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void separatesValuesBySingleBlanks_data()
    {
        QTest::addColumn<Writes>("write");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char *why, Writes write, const QByteArray &line) {
            QTest::newRow(why) << write << line;
        };
        row(
            "label alone", [] { trace("Close"); }, "Close");
        row(
            "booleans in words", [] { trace("Dark Mode:", true, false); }, "Dark Mode: true false");
        row(
            "integers of any width, never characters",
            [] { trace(quint8(65), short(-1), 7U, qsizetype(1) << 40); }, "65 -1 7 1099511627776");
        row(
            "shortest exact number", [] { trace(1.0, 0.1, 1234567.0); }, "1 0.1 1234567");
        row(
            "text as UTF-8", [] { trace(u"Café"_s, "x"_ba); }, "Café x");
        row(
            "an empty text keeps its blanks", [] { trace("a", QString(), "b"); }, "a  b");
        row(
            "list",
            [] {
                trace("Fields:", QStringList{u"a"_s, u"b"_s}, QList<int>());
            },
            "Fields: [a, b] []");
        row(
            "list of lists",
            [] {
                trace(QList<QList<int>>{{1, 2}, {3}});
            },
            "[[1, 2], [3]]");
        row(
            "result of a function",
            [] {
                trace(
                    "n", [] { return 1; }, [] { return u"x"_s; });
            },
            "n 1 x");
        row(
            "point in time", [] { trace(QDateTime(QDate(2024, 2, 29), QTime(8, 5))); },
            "2024-02-29T08:05:00");
    }
    void separatesValuesBySingleBlanks()
    {
        QFETCH(const Writes, write);
        QFETCH(const QByteArray, line);
        const Reader reader("file");
        write();
        QCOMPARE(reader.read(), line + '\n');
    }

    void evaluatesOnlyWhatSomebodyReads_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("calls");
        QTest::newRow("null device") << "/dev/null"_ba << 0;
        QTest::newRow("closed") << ""_ba << 0;
        QTest::newRow("another device") << "/dev/zero"_ba << 1;
    }
    void evaluatesOnlyWhatSomebodyReads()
    {
        QFETCH(const QByteArray, path);
        const int descriptor = ::open(path.constData(), O_WRONLY);
        Trace::setDescriptor(descriptor);
        int calls = 0;
        trace("x", [&calls] { return ++calls; });
        Trace::setDescriptor(STDOUT_FILENO);
        ::close(descriptor);
        QTEST(calls, "calls");
    }

    void keepsEveryLineOfSeveralThreadsWhole()
    {
        constexpr int linesOfOne = 20'000; // together more than what is written in one go
        const Reader reader("file");
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([i] {
                for (int line = 0; line < linesOfOne; ++line)
                    trace("thread", i, "line", line, "end");
            });
        }
        for (std::thread &thread : threads)
            thread.join();

        std::array<int, 4> next = {};
        QByteArrayList lines = reader.read().split('\n');
        QCOMPARE(lines.takeLast(), "");
        for (const QByteArray &line : lines) {
            const unsigned i = line.mid(7, 1).toUInt() % 4;
            QCOMPARE(line,
                     "thread " + QByteArray::number(i) + " line " + QByteArray::number(next[i]++) + " end");
        }
        QCOMPARE(lines.size(), 4 * linesOfOne);
    }

    void writesWhenTheEventLoopIsIdle()
    {
        const Reader reader("pipe");
        QSocketNotifier notifier(reader.descriptor(), QSocketNotifier::Read);
        QSignalSpy arrivals(&notifier, &QSocketNotifier::activated);
        Trace::flushWhenIdle();
        trace("waits");
        QCoreApplication::processEvents();
        QVERIFY2(arrivals.empty(), "not while there may be more to do");
        QVERIFY(arrivals.wait());
        QCOMPARE(reader.read(), "waits\n");
    }

    void outlivesItsReader()
    {
        const UnixSignals signalsOfTheProgram; // without it SIGPIPE ends the process
        Reader reader("pipe");
        reader.leave();
        trace("lost");
        Trace::flush();
        QVERIFY2(!Trace::enabled(), "a pipe without a reader goes nowhere");
    }

    void neverWaitsForAReader_data()
    {
        QTest::addColumn<QByteArray>("kind");
        QTest::newRow("pipe") << "pipe"_ba;
        QTest::newRow("terminal") << "terminal"_ba;
    }
    void neverWaitsForAReader()
    {
        QFETCH(const QByteArray, kind);
        const QByteArray line(1023, 'x');
        if (kind == "terminal" && !hasTerminals())
            QSKIP("this system has no pseudo-terminals");
        const Reader reader(kind);
        for (int i = 0; i < 24 * 1024; ++i)
            trace(line);
        const QByteArray received = reader.read();
        QVERIFY2(received.size() > 15 << 20, "what waits is kept");
        QVERIFY2(received.size() < 17 << 20, "and bounded");
        QVERIFY2(received == (line + '\n').repeated(received.size() / 1024), "lines are lost as a whole");
        trace("still");
        QCOMPARE(reader.read(), "still\n");
    }
};

OBLINO_TEST(tst_trace, QCoreApplication)

#include "tst_trace.moc"
