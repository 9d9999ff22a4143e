#include <support/testmain.h>

#include <platform/unixsignals.h>

#include <QSignalSpy>

#include <unistd.h>

#include <csignal>

using namespace oblino;

class tst_unixsignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsASignalUntilSomebodyListensAndSetsATerm()
    {
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            UnixSignals ending;
            const QSignalSpy asked(&ending, &UnixSignals::endRequested);
            QCOMPARE(::raise(number), 0);
            const unsigned secondsLeft = ::alarm(0);
            QVERIFY2(secondsLeft >= 1 && secondsLeft <= 3, "though the event loop does not run");
            QCoreApplication::processEvents();
            QVERIFY(asked.empty());
            ending.listen();
            QTRY_COMPARE(asked.size(), 1);
        }
    }
};

OBLINO_TEST(tst_unixsignals, QCoreApplication)

#include "tst_unixsignals.moc"
