#include <support/privatebus.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <QDirIterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Prepare = std::function<void(const TemporaryHome &)>;

namespace {

const QString oblinoProgram = QStringLiteral(OBLINO_PROGRAM);
const QByteArray list =
    "3/7/24|Paint fence|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0|Harbor "
    "Cafe|Dana^not a row^";

QProcessEnvironment bareEnvironment(const TemporaryHome &home)
{
    QProcessEnvironment variables;
    const QProcessEnvironment ours = QProcessEnvironment::systemEnvironment();
    for (const char *kept : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const QString name = QLatin1String(kept); ours.contains(name))
            variables.insert(name, ours.value(name));
    }
    variables.insert(u"HOME"_s, home.path({}));
    variables.insert(u"TMPDIR"_s, home.path({})); // for the sockets that killed programs leave
    variables.insert(u"XDG_RUNTIME_DIR"_s, home.path(u"run"_s));
    variables.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    variables.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    return variables;
}

/// The program as a process of its own, killed with the object.
class Program : public QProcess
{
public:
    explicit Program(const TemporaryHome &home) { setProcessEnvironment(bareEnvironment(home)); }
    ~Program() override
    {
        kill();
        waitForFinished();
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void set(const QString &variable, const QString &value)
    {
        QProcessEnvironment variables = processEnvironment();
        variables.insert(variable, value);
        setProcessEnvironment(variables);
    }
    void unset(const QStringList &names)
    {
        QProcessEnvironment variables = processEnvironment();
        for (const QString &name : names)
            variables.remove(name);
        setProcessEnvironment(variables);
    }

    void startProgram() { start(oblinoProgram, QStringList()); }

    bool says(const QByteArray &line)
    {
        return QTest::qWaitFor([&] { return (m_output += readAllStandardOutput()).contains(line); }, 20'000);
    }
    bool isUp() { return says("Dark Mode: "); }

    /// @return the exit code, or -1 where the process did not end by itself within 3 s
    int endBy(int signal)
    {
        ::kill(static_cast<pid_t>(processId()), signal);
        return waitForFinished(3000) && exitStatus() == NormalExit ? exitCode() : -1;
    }

private:
    QByteArray m_output;
};

/// Everything in a folder: kind, mode, time of change, content.
QStringList snapshot(const QString &folder)
{
    QStringList all;
    const QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (QDirIterator entry(folder, everything, QDirIterator::Subdirectories); entry.hasNext();) {
        struct stat status = {};
        const QString path = entry.next();
        ::lstat(QFile::encodeName(path).constData(), &status);
        const QByteArray content = S_ISREG(status.st_mode) ? TemporaryHome::content(path) : QByteArray();
        all.append(u"%1 %2 %3 %4.%5 %6"_s.arg(path)
                       .arg(status.st_mode, 0, 8)
                       .arg(status.st_ino)
                       .arg(status.st_mtim.tv_sec)
                       .arg(status.st_mtim.tv_nsec)
                       .arg(QString::fromUtf8(content)));
    }
    all.sort();
    return all;
}

} // namespace

class tst_process : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        QVERIFY(QDir().mkdir(m_home->path(u"run"_s)));
        QCOMPARE(::chmod(qPrintable(m_home->path(u"run"_s)), 0700), 0);
        TemporaryHome::write(m_home->listPath(), list);
    }
    void cleanup() { QDBusConnection::disconnectFromBus(u"portal"_s); }

    void endsOnASignalAndLeavesTheListAlone_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }
    void endsOnASignalAndLeavesTheListAlone()
    {
        QFETCH(const int, signal);
        const QStringList before = snapshot(m_home->documents());
        Program first(*m_home);
        first.startProgram();
        QVERIFY(first.isUp());
        QCOMPARE(first.endBy(signal), 0);
        QCOMPARE(snapshot(m_home->documents()), before);
        struct stat settings = {};
        QCOMPARE(::stat(qPrintable(m_home->path(u".config/oblino/oblino.ini"_s)), &settings), 0);
        QCOMPARE(settings.st_mode & 0777, 0600U);
    }

    void aSecondStartWritesNothing()
    {
        Program first(*m_home);
        first.startProgram();
        QVERIFY(first.isUp());
        const QStringList before = snapshot(m_home->path({}));
        Program second(*m_home);
        second.startProgram();
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.readAllStandardOutput(), QByteArray());
        QCOMPARE(snapshot(m_home->path({})), before);
        QCOMPARE(first.state(), QProcess::Running);
        QCOMPARE(first.endBy(SIGTERM), 0);
    }

    void startsWhateverLiesInTheHome_data()
    {
        QTest::addColumn<Prepare>("prepare");
        const auto row = [](const char *why, const Prepare &prepare) { QTest::newRow(why) << prepare; };
        row("no list", [](const TemporaryHome &) {});
        row("empty list", [](const TemporaryHome &home) { TemporaryHome::write(home.listPath(), ""); });
        row("no text",
            [](const TemporaryHome &home) { TemporaryHome::write(home.listPath(), "\xff\0|^"_ba); });
        row("folder", [](const TemporaryHome &home) { QVERIFY(QDir().mkdir(home.listPath())); });
        row("named pipe",
            [](const TemporaryHome &home) { QCOMPARE(::mkfifo(qPrintable(home.listPath()), 0600), 0); });
        row("link to nothing", [](const TemporaryHome &home) {
            QVERIFY(QFile::link(home.path(u"nothing"_s), home.listPath()));
        });
        row("documents folder is a file", [](const TemporaryHome &home) {
            QVERIFY(QDir().rmdir(home.documents()));
            TemporaryHome::write(home.documents(), "");
        });
    }
    void startsWhateverLiesInTheHome()
    {
        QFETCH(const Prepare, prepare);
        QVERIFY(QFile::remove(m_home->listPath()));
        prepare(*m_home);
        const QStringList before = snapshot(m_home->documents());
        Program first(*m_home);
        first.startProgram();
        QVERIFY(first.isUp());
        QCOMPARE(first.endBy(SIGTERM), 0);
        QCOMPARE(snapshot(m_home->documents()), before);
    }

    void makesTheDocumentsFolder()
    {
        QVERIFY(QDir(m_home->documents()).removeRecursively());
        Program first(*m_home);
        first.startProgram();
        QVERIFY(first.isUp());
        QVERIFY(QFileInfo(m_home->documents()).isDir());
    }

    void worksForAUserWithoutAPlaceToWrite_data()
    {
        QTest::addColumn<QString>("unset");
        QTest::newRow("read-only home") << u"none"_s;
        QTest::newRow("no home") << u"HOME"_s;
        QTest::newRow("no folder for sockets") << u"XDG_RUNTIME_DIR"_s;
    }
    void worksForAUserWithoutAPlaceToWrite()
    {
        QFETCH(const QString, unset);
        // The program itself may stand where nobody else can read it.
        const QString copy = m_home->path(u"oblino"_s);
        QVERIFY(QFile::copy(oblinoProgram, copy));
        QVERIFY(QDir().mkdir(m_home->path(u".config"_s)));
        TemporaryHome::write(m_home->path(u".config/user-dirs.dirs"_s),
                             "XDG_DOCUMENTS_DIR=\"" + m_home->documents().toUtf8() + '"');
        QCOMPARE(::chmod(qPrintable(m_home->path({})), 0555), 0);
        Program first(*m_home);
        first.set(u"XDG_CONFIG_HOME"_s, m_home->path(u".config"_s));
        first.unset({unset});
        startUnprivileged(first, copy, {});
        const bool up = first.isUp() && first.says("Read File 3/7/24");
        QCOMPARE(::chmod(qPrintable(m_home->path({})), 0700), 0);
        QVERIFY2(up, first.readAllStandardError());
        QCOMPARE(first.endBy(SIGTERM), 0);
        QCOMPARE(TemporaryHome::content(m_home->listPath()), list);
    }

    void aClosedOutputTakesNoTraces()
    {
        Program first(*m_home);
        first.start(u"sh"_s, {u"-c"_s, u"exec \"$0\" <&- >&- 2>&-"_s, oblinoProgram});
        QVERIFY(isAnswering());
        for (const char *descriptor : {"0", "1", "2"}) {
            const QString path = u"/proc/%1/fd/%2"_s.arg(first.processId()).arg(QLatin1String(descriptor));
            QCOMPARE(QFile::symLinkTarget(path), u"/dev/null"_s); // and nothing that the program opened
        }
        QCOMPARE(first.endBy(SIGTERM), 0);
    }

    void aReaderThatDoesNotReadIsNotWaitedFor_data()
    {
        QTest::addColumn<bool>("leaves");
        QTest::newRow("it stays") << false;
        QTest::newRow("it goes away") << true;
    }
    void aReaderThatDoesNotReadIsNotWaitedFor()
    {
        QFETCH(const bool, leaves);
        TemporaryHome::write(m_home->listPath(), list.repeated(5000)); // more than a pipe takes
        const QString pipe = m_home->path(u"pipe"_s);
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        const int reader = ::open(qPrintable(pipe), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        Program first(*m_home);
        first.setStandardOutputFile(pipe);
        first.startProgram();
        QVERIFY(isAnswering());
        if (leaves)
            ::close(reader);
        QCOMPARE(first.endBy(SIGTERM), 0);
        if (!leaves)
            ::close(reader);
    }

    void saysThatThereIsNoDisplay()
    {
        const QStringList before = snapshot(m_home->path({}));
        Program first(*m_home);
        first.unset({u"QT_QPA_PLATFORM"_s});
        first.startProgram();
        QVERIFY(first.waitForFinished());
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
        QCOMPARE(first.exitCode(), 1);
        QCOMPARE(first.readAllStandardError(),
                 "oblino: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n");
        QCOMPARE(snapshot(m_home->path({})), before);
    }

    void followsTheDesktopsAppearance()
    {
        const PrivateBus bus;
        FakePortal portal(bus.connection(u"portal"_s));
        portal.scheme = 1;
        Program first(*m_home);
        first.set(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        first.startProgram();
        QVERIFY2(first.says("Dark Mode: true\n"), "the portal's answer comes before the list is read");
        portal.change(2);
        QVERIFY(first.says("Dark mode change\n"));
        QCOMPARE(first.endBy(SIGTERM), 0);
    }

    void endsOnASignalWhileItStarts()
    {
        const PrivateBus bus;
        FakePortal portal(bus.connection(u"portal"_s));
        Program first(*m_home);
        portal.answer = FakePortal::Answer::Withheld;
        portal.onRead = [&first] { ::kill(static_cast<pid_t>(first.processId()), SIGTERM); };
        first.set(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        first.startProgram();
        QTRY_COMPARE(first.state(), QProcess::NotRunning);
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
        QCOMPARE(first.exitCode(), 0);
    }

private:
    // A second start ends well only when the first one's event loop runs.
    bool isAnswering() const
    {
        const QString lock = m_home->path(u".local/share/oblino/oblino.lock"_s);
        if (!QTest::qWaitFor([&lock] { return QFile::exists(lock); }, 20'000))
            return false;
        Program second(*m_home);
        second.startProgram();
        return second.waitForFinished() && second.exitStatus() == QProcess::NormalExit &&
               second.exitCode() == 0;
    }

    std::unique_ptr<TemporaryHome> m_home;
};

OBLINO_TEST(tst_process, QCoreApplication)

#include "tst_process.moc"
