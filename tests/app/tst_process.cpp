#include <support/privatebus.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Homes = Table<QString, int>;
using Variables = Table<QString>;

namespace {

const QString oblinoProgram = QStringLiteral(OBLINO_PROGRAM);
const QByteArray list =
    "3/7/24|Paint fence|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0|Harbor "
    "Cafe|Dana^not a row^";

/// The program as a process of its own, with an environment of its own, killed with the object.
class Program : public QProcess
{
public:
    explicit Program(const TemporaryHome &home)
    {
        const QProcessEnvironment ours = QProcessEnvironment::systemEnvironment();
        for (const char *kept : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
            variables.insert(QLatin1String(kept), ours.value(QLatin1String(kept)));
        variables.insert(u"HOME"_s, home.path({}));
        variables.insert(u"TMPDIR"_s, home.path({})); // for the sockets that killed programs leave
        variables.insert(u"XDG_RUNTIME_DIR"_s, home.path(u"run"_s));
        variables.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        variables.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    }
    ~Program() override
    {
        kill();
        waitForFinished();
    }

    void startProgram()
    {
        setProcessEnvironment(variables);
        start(oblinoProgram, QStringList());
    }
    bool startsUp()
    {
        startProgram();
        return isUp();
    }

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

    QProcessEnvironment variables;

private:
    QByteArray m_output;
};

/// Everything in a folder, with its size and the time of its change.
QByteArrayList snapshot(const QString &folder)
{
    QProcess find;
    find.start(u"find"_s, {folder, u"-mindepth"_s, u"1"_s, u"-printf"_s, u"%p %s %T@\\n"_s});
    find.waitForFinished();
    return find.readAllStandardOutput().split('\n');
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

    void aSecondStartWritesNothing()
    {
        Program first(*m_home);
        QVERIFY(first.startsUp());
        const QByteArrayList before = snapshot(m_home->path({}));
        Program second(*m_home);
        second.startProgram();
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.readAllStandardOutput(), QByteArray());
        QCOMPARE(snapshot(m_home->path({})), before);
        QCOMPARE(first.state(), QProcess::Running);
        QCOMPARE(first.endBy(SIGTERM), 0);
    }

    void startsAndEndsWhateverLiesInTheHome_data()
    {
        const Homes row;
        row("a list", u":"_s, SIGTERM);
        row("a list, Ctrl+C", u":"_s, SIGINT);
        row("a list, the terminal closed", u":"_s, SIGHUP);
        row("no documents folder", u"rm -r Documents"_s, SIGTERM);
        row("no text", uR"(printf '\377\0|^' > $list)"_s, SIGTERM);
        row("folder", u"rm $list; mkdir $list"_s, SIGTERM);
        row("named pipe", u"rm $list; mkfifo $list"_s, SIGTERM);
        row("documents folder is a file", u"rm -r Documents; touch Documents"_s, SIGTERM);
    }
    void startsAndEndsWhateverLiesInTheHome()
    {
        const auto [command, signal] = Homes::cells();
        const QString script = u"cd '%1'; list=Documents/ltodolist.txt; "_s.arg(m_home->path({})) + command;
        QCOMPARE(QProcess::execute(u"sh"_s, {u"-c"_s, script}), 0);
        const QByteArrayList before = snapshot(m_home->documents());
        Program first(*m_home);
        QVERIFY(first.startsUp());
        QCOMPARE(first.endBy(signal), 0);
        QCOMPARE(snapshot(m_home->documents()), before);
        QVERIFY(QFile::exists(m_home->documents())); // a folder was made where there was nothing
    }

    void worksForAUserWithoutAPlaceToWrite_data()
    {
        const Variables row;
        row("read-only home", u"none"_s);
        row("no home", u"HOME"_s);
        row("no folder for sockets", u"XDG_RUNTIME_DIR"_s);
    }
    void worksForAUserWithoutAPlaceToWrite()
    {
        const auto [unset] = Variables::cells();
        // The program itself may stand where nobody else can read it.
        const QString copy = m_home->path(u"oblino"_s);
        QVERIFY(QFile::copy(oblinoProgram, copy));
        QVERIFY(QDir().mkdir(m_home->path(u".config"_s)));
        TemporaryHome::write(m_home->path(u".config/user-dirs.dirs"_s),
                             "XDG_DOCUMENTS_DIR=\"" + m_home->documents().toUtf8() + '"');
        QCOMPARE(::chmod(qPrintable(m_home->path({})), 0555), 0);
        Program first(*m_home);
        first.variables.insert(u"XDG_CONFIG_HOME"_s, m_home->path(u".config"_s));
        first.variables.remove(unset);
        first.setProcessEnvironment(first.variables);
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
        first.setProcessEnvironment(first.variables);
        first.start(u"sh"_s, {u"-c"_s, u"exec \"$0\" <&- >&- 2>&-"_s, oblinoProgram});
        QVERIFY(first.waitForStarted());
        const QString output = u"/proc/%1/fd/1"_s.arg(first.processId());
        QTRY_COMPARE(QFile::symLinkTarget(output), u"/dev/null"_s); // and nothing that the program opened
    }

    void saysThatThereIsNoDisplay()
    {
        Program first(*m_home);
        first.variables.remove(u"QT_QPA_PLATFORM"_s);
        first.startProgram();
        QVERIFY(first.waitForFinished());
        QCOMPARE(first.exitCode(), 1);
        QCOMPARE(first.readAllStandardError(),
                 "oblino: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n");
    }

    void followsTheDesktopsAppearance()
    {
        const PrivateBus bus;
        FakePortal portal(bus.connection(u"portal"_s));
        portal.scheme = 1;
        Program first(*m_home);
        first.variables.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        first.startProgram();
        QVERIFY2(first.says("Dark Mode: true\n"), "the portal's answer comes before the list is read");
        portal.change(2);
        QVERIFY(first.says("Dark mode change\n"));
        QCOMPARE(first.endBy(SIGTERM), 0);
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
};

OBLINO_TEST(tst_process, QCoreApplication)

#include "tst_process.moc"
