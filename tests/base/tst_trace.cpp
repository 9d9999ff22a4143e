#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
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
            trace("Close");
            trace("Dark Mode:", true, false);
            trace(quint8(65), short(-1), 7U, qsizetype(1) << 40);
            trace(1.0, 0.1, 1234567.0);
            trace(u"Café"_s, "x"_ba, QString(), "b");
            trace("Fields:", QStringList{u"a"_s, u"b"_s}, QList<int>());
            trace(QList<QList<int>>{{1, 2}, {3}});
            trace("n", [] { return u"result"_s; });
            trace(QDateTime(QDate(2024, 2, 29), QTime(8, 5)));
        });
        QCOMPARE(traces, "Close\n"
                         "Dark Mode: true false\n"
                         "65 -1 7 1099511627776\n"
                         "1 0.1 1234567\n"
                         "Café x  b\n"
                         "Fields: [a, b] []\n"
                         "[[1, 2], [3]]\n"
                         "n result\n"
                         "2024-02-29T08:05:00\n");
    }

    void evaluatesOnlyWhatSomebodyReads()
    {
        for (const auto &[path, expected] : {std::pair("/dev/null", 0), {"", 0}, {"/dev/zero", 1}}) {
            const int descriptor = ::open(path, O_WRONLY | O_CLOEXEC);
            Trace::setDescriptor(descriptor);
            int calls = 0;
            trace("x", [&calls] { return ++calls; });
            Trace::setDescriptor(STDOUT_FILENO);
            ::close(descriptor);
            QCOMPARE(calls, expected);
        }
    }

    // There the texts of tasks would be kept, for longer and for more readers than the user thinks.
    void writesNothingIntoTheSystemsLog_data()
    {
        const Table<QByteArray, bool> row; // "D" and "I" stand for device and inode of the output
        row("none", "", true);
        row("this one", "D:I", false);
        row("another inode", "D:1I", true);
        row("another device", "1D:I", true);
        row("no inode", "D:", true);
        row("no device", ":I", true);
        row("the inode alone", "I", true);
        row("more behind it", "D:I ", true);
        row("more numbers", "D:I:1", true);
        row("a sign", "+D:I", true);
        row("too large", "D:99999999999999999999I", true);
        row("words", "device:inode", true);
    }
    void writesNothingIntoTheSystemsLog()
    {
        const auto [stream, expected] = Table<QByteArray, bool>::cells();
        QTemporaryFile file;
        QVERIFY(file.open());
        int pipe[2] = {-1, -1}, sockets[2] = {-1, -1};
        QCOMPARE(::pipe2(pipe, O_CLOEXEC), 0);
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
        for (const int descriptor : {file.handle(), pipe[1], sockets[1]}) {
            struct stat status = {};
            QCOMPARE(::fstat(descriptor, &status), 0);
            QByteArray value = stream;
            value.replace("D", QByteArray::number(quint64(status.st_dev)));
            value.replace("I", QByteArray::number(quint64(status.st_ino)));
            qputenv("JOURNAL_STREAM", value);
            Trace::setDescriptor(descriptor);
            const bool enabled = Trace::enabled();
            Trace::setDescriptor(STDOUT_FILENO);
            qunsetenv("JOURNAL_STREAM");
            QCOMPARE(enabled, expected);
        }
        for (const int end : {pipe[0], pipe[1], sockets[0], sockets[1]})
            ::close(end);
    }

    void keepsABoundedNumberOfWholeLinesForASlowReader()
    {
        const QByteArray line(1023, 'x');
        int ends[2] = {-1, -1};
        QCOMPARE(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
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
        QVERIFY(received.size() > 15 << 20 && received.size() < 17 << 20);
        QVERIFY(received == (line + '\n').repeated(received.size() / 1024));
    }
};

OBLINO_TEST(tst_trace, QCoreApplication)

#include "tst_trace.moc"
