#include <support/place.h>
#include <support/testmain.h>

#include <desktop/unixsignals.h>

#include <QSignalSpy>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace oblino;

namespace {

/// Starts a process that is told to end, has a second for that, and needs longer for a save.
pid_t startSlowSave(const Place &place, const QByteArray &text, bool tellsProgress)
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    const UnixSignals ending(nullptr, 1);
    class : public FileCalls
    {
        ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override
        {
            ::usleep(60'000);
            return FileCalls::pwrite(fd, data, std::min<size_t>(size, 100), offset);
        }
    } slowCalls;
    if (tellsProgress)
        slowCalls.setProgressHandler(&UnixSignals::extendTime);
    SafeFile file(place.path, place.privateFolder, slowCalls);
    ::raise(SIGTERM);
    ::_exit(file.write(text).written ? 0 : 1);
}

} // namespace

class tst_unixsignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsASignalUntilSomebodyListensAndSetsATerm()
    {
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            UnixSignals ending;
            const QSignalSpy asked(&ending, &UnixSignals::endRequested);
            UnixSignals::extendTime();
            QCOMPARE(::alarm(0), 0U); // no term unasked
            QCOMPARE(::raise(number), 0);
            const unsigned secondsLeft = ::alarm(0);
            QVERIFY2(secondsLeft >= 1 && secondsLeft <= 3, "though the event loop does not run");
            QCoreApplication::processEvents();
            QVERIFY(asked.empty());
            ending.listen();
            QTRY_COMPARE(asked.size(), 1);
        }
    }

    void letsASaveEndWhileBytesGoOut()
    {
        const QByteArray text(1000, 'x'); // 1.2 s, with the journal
        const Place hurried;
        const Place patient;
        const pid_t stopped = startSlowSave(hurried, text, false);
        const pid_t saving = startSlowSave(patient, text, true);
        int status = 0;
        QCOMPARE(::waitpid(stopped, &status, 0), stopped);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM);
        QCOMPARE(::waitpid(saving, &status, 0), saving);
        QVERIFY(status == 0 && contentOf(patient.path) == text);
    }
};

OBLINO_TEST(tst_unixsignals, QCoreApplication)

#include "tst_unixsignals.moc"
