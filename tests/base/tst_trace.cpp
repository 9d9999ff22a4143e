#include <support/testmain.h>
#include <support/traces.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_trace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void separatesValuesBySingleBlanks()
    {
        const QByteArray traces = tracesOf([] {
            trace("Dark Mode:", true, quint8(65), -1, qsizetype(1) << 40, 0.1, 1234567.0);
            trace(u"Café"_s, "x"_ba, QString(), QStringList{u"a"_s, u"b"_s}, QList<QList<int>>{{1, 2}, {}});
            trace([] { return u"result"_s; }, QDateTime(QDate(2024, 2, 29), QTime(8, 5)));
        });
        QCOMPARE(traces, "Dark Mode: true 65 -1 1099511627776 0.1 1234567\n"
                         "Café x  [a, b] [[1, 2], []]\n"
                         "result 2024-02-29T08:05:00\n");
    }

    // In the system's log the texts of tasks would be kept, for longer and for more readers than the user
    // thinks.
    void evaluatesOnlyWhatSomebodyReads()
    {
        struct stat zero = {};
        QCOMPARE(::stat("/dev/zero", &zero), 0);
        const QByteArray device = QByteArray::number(quint64(zero.st_dev));
        const QByteArray inode = QByteArray::number(quint64(zero.st_ino));
        for (const auto &[path, journal, expected] : {std::tuple("/dev/null", QByteArray(), 0),
                                                      {"/no/such/file", {}, 0},
                                                      {"/dev/zero", {}, 1},
                                                      {"/dev/zero", device + ':' + inode, 0},
                                                      {"/dev/zero", device + ":1" + inode, 1},
                                                      {"/dev/zero", '1' + device + ':' + inode, 1}}) {
            qputenv("JOURNAL_STREAM", journal);
            const int descriptor = ::open(path, O_WRONLY | O_CLOEXEC);
            Trace::setDescriptor(descriptor);
            int calls = 0;
            trace("x", [&calls] { return ++calls; });
            Trace::setDescriptor(STDOUT_FILENO);
            ::close(descriptor);
            QCOMPARE(calls, expected);
        }
        qunsetenv("JOURNAL_STREAM");
    }

    void keepsABoundedNumberOfWholeLinesForASlowReader()
    {
        const QByteArray line(1023, 'x');
        int pipe[2] = {-1, -1}, terminal[2] = {-1, -1};
        QCOMPARE(::pipe2(pipe, O_CLOEXEC), 0);
        QCOMPARE(::openpty(&terminal[0], &terminal[1], nullptr, nullptr, nullptr), 0);
        termios mode = {};
        ::cfmakeraw(&mode);
        QCOMPARE(::tcsetattr(terminal[1], TCSANOW, &mode), 0);
        for (const int *ends : {pipe, terminal}) {
            ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
            Trace::setDescriptor(ends[1]);
            for (int i = 0; i < 24 * 1024; ++i)
                trace(line);
            QByteArray received;
            QByteArray part(65536, '\0');
            for (ssize_t size = 0; size >= 0; size = ::read(ends[0], part.data(), 65536)) {
                received.append(part.constData(), size);
                Trace::flush();
            }
            Trace::setDescriptor(STDOUT_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            QVERIFY2(received.size() > 15 << 20 && received.size() < 17 << 20,
                     QByteArray::number(received.size()));
            QVERIFY(received == (line + '\n').repeated(received.size() / 1024));
        }
    }
};

OBLINO_TEST(tst_trace, QCoreApplication)

#include "tst_trace.moc"
