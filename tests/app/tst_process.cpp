#include <support/privatebus.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <sys/stat.h>

#include <csignal>
#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Homes = Table<QString, int>;

namespace {

const QString oblinoProgram = QStringLiteral(OBLINO_PROGRAM);
const QByteArray list = "3/7/24|Paint fence||1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0||^"
                        "not a row^";

/// The program as a process of its own, with an environment of its own, killed with the object.
class Program : public QProcess
{
public:
    /// @param variable  besides those that every case needs; without a value it is not set
    explicit Program(const TemporaryHome &home, const QString &variable = {}, const QString &value = {})
    {
        QProcessEnvironment environment;
        for (const char *kept : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
            environment.insert(QLatin1String(kept), qEnvironmentVariable(kept));
        for (const auto &[name, text] :
             {std::pair(u"HOME"_s, home.path({})),
              {u"TMPDIR"_s, home.path({})}, // for the sockets that killed programs leave
              {u"XDG_RUNTIME_DIR"_s, home.path(u"run"_s)},
              {u"QT_QPA_PLATFORM"_s, u"offscreen"_s},
              {u"LC_ALL"_s, u"C.UTF-8"_s}})
            environment.insert(name, text);
        value.isEmpty() ? environment.remove(variable) : environment.insert(variable, value);
        setProcessEnvironment(environment);
    }
    ~Program() override
    {
        kill();
        waitForFinished();
    }

    bool says(const QByteArray &line)
    {
        return QTest::qWaitFor([&] { return (m_output += readAllStandardOutput()).contains(line); }, 20'000);
    }
    bool isUp() { return says("Dark Mode: "); }
    bool startsUp()
    {
        start(oblinoProgram, QStringList());
        return isUp();
    }

    /// @return the exit code, or -1 where the process did not end by itself within 3 s
    int endBy(int signal)
    {
        ::kill(static_cast<pid_t>(processId()), signal);
        return waitForFinished(3000) && exitStatus() == NormalExit ? exitCode() : -1;
    }

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

    void aSecondStartWritesNothingAndACrashIsNotInTheWay()
    {
        Program first(*m_home);
        QVERIFY(first.startsUp());
        const QByteArrayList before = snapshot(m_home->path({}));
        Program second(*m_home);
        second.start(oblinoProgram, QStringList());
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.readAllStandardOutput(), QByteArray());
        QCOMPARE(snapshot(m_home->path({})), before);
        QCOMPARE(first.state(), QProcess::Running);
        QCOMPARE(first.endBy(SIGKILL), -1);
        Program third(*m_home);
        QVERIFY(third.startsUp());
        QCOMPARE(third.endBy(SIGTERM), 0);
    }

    void startsAndEndsWhateverLiesInTheHome_data()
    {
        const Homes row;
        row("no documents folder", u"rm -r Documents"_s, SIGTERM);
        row("no text; Ctrl+C", uR"(printf '\377\0|^' > $list)"_s, SIGINT);
        row("folder; the terminal closed", u"rm $list; mkdir $list"_s, SIGHUP);
        row("named pipe", u"rm $list; mkfifo $list"_s, SIGTERM);
        row("documents folder is a file", u"rm -r Documents; touch Documents"_s, SIGTERM);
    }
    void startsAndEndsWhateverLiesInTheHome()
    {
        const auto [command, signal] = Homes::cells();
        const QString script = u"cd '%1'; list=Documents/ltodolist.txt; "_s.arg(m_home->path({})) + command;
        QCOMPARE(QProcess::execute(u"sh"_s, {u"-c"_s, script}), 0);
        const QByteArrayList before = snapshot(m_home->documents());
        Program program(*m_home);
        QVERIFY(program.startsUp());
        QCOMPARE(program.endBy(signal), 0);
        QCOMPARE(snapshot(m_home->documents()), before);
        QVERIFY(QFile::exists(m_home->documents())); // a folder was made where there was nothing
    }

    void worksForAUserWithoutAPlaceToWrite()
    {
        // The program itself may stand where nobody else can read it.
        const QString copy = m_home->path(u"oblino"_s);
        QVERIFY(QFile::copy(oblinoProgram, copy));
        for (const QString &unset : {u"none, the home is read-only"_s, u"HOME"_s, u"XDG_RUNTIME_DIR"_s}) {
            QCOMPARE(::chmod(qPrintable(m_home->path({})), 0555), 0);
            Program program(*m_home, unset);
            startUnprivileged(program, copy, {});
            const bool isUp = program.isUp() && (unset == u"HOME"_s || program.says("Read File 3/7/24"));
            QCOMPARE(::chmod(qPrintable(m_home->path({})), 0700), 0);
            QVERIFY2(isUp, program.readAllStandardError() + qPrintable(unset));
            QCOMPARE(program.endBy(SIGTERM), 0);
            QCOMPARE(TemporaryHome::content(m_home->listPath()), list);
        }
    }

    void followsTheDesktopsAppearance()
    {
        const PrivateBus bus;
        FakePortal portal(bus.connection(u"portal"_s));
        portal.scheme = 1;
        Program program(*m_home, u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        program.start(oblinoProgram, QStringList());
        QVERIFY2(program.says("Dark Mode: true\n"), "the portal's answer comes before the list is read");
        portal.change(2);
        QVERIFY(program.says("Dark mode change\n"));
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
};

OBLINO_TEST(tst_process, QCoreApplication)

#include "tst_process.moc"
