#include <support/testmain.h>

#include <base/dispatch.h>

#include <QSemaphore>

using namespace oblino;

class tst_dispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitingWorkKeepsNoOtherFromRunning()
    {
        constexpr int works = 50; // more than any usual pool has threads
        for (const auto priority : {Dispatch::Priority::Low, Dispatch::Priority::High}) {
            QSemaphore running;
            QSemaphore release;
            for (int i = 0; i < works; ++i) {
                Dispatch::background(priority, [&] {
                    running.release();
                    release.acquire();
                    running.release();
                });
            }
            const bool haveAllBegun = running.tryAcquire(works, 20'000);
            release.release(works);
            running.acquire(haveAllBegun ? works : 2 * works);
            QVERIFY(haveAllBegun);
        }
    }
};

OBLINO_TEST(tst_dispatch, QCoreApplication)

#include "tst_dispatch.moc"
