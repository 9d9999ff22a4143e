#include <support/testmain.h>

#include <base/dispatch.h>
#include <base/notificationcenter.h>

#include <QSemaphore>
#include <QThread>

#include <thread>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_dispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notifiesTheObserversOfThatNameAtOnce()
    {
        NotificationCenter center;
        QObject here;
        auto gone = std::make_unique<QObject>();
        int reloads = 0;
        center.observe(u"reload"_s, &here, [&reloads] { ++reloads; });
        center.observe(u"reload"_s, &here, [&reloads] { ++reloads; });
        center.observe(u"Reload"_s, &here, [] { QFAIL("names differ in case"); });
        center.observe(u"reload"_s, gone.get(), [] { QFAIL("its observer is gone"); });
        gone.reset();
        std::thread([&center] { center.post(u"reload"_s); }).join();
        QCOMPARE(reloads, 2);
    }

    void runsWorkOnTheMainThreadInOrder()
    {
        QObject context;
        auto gone = std::make_unique<QObject>();
        QList<int> order;
        const auto queue = [&](int number) {
            Dispatch::main(&context, [&order, number] {
                QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
                order.append(number);
            });
        };
        queue(1);
        std::thread([&] {
            queue(2);
            Dispatch::main(gone.get(), [] { QFAIL("its context is gone"); });
            queue(3);
        }).join();
        QVERIFY2(order.isEmpty(), "not before the main thread is free");
        gone.reset();
        QTRY_COMPARE(order, (QList{1, 2, 3}));
    }

    void waitingWorkKeepsNoOtherFromRunning()
    {
        constexpr int works = 50; // more than any usual pool has threads
        for (const auto priority : {Dispatch::Priority::Low, Dispatch::Priority::High}) {
            QSemaphore running;
            QSemaphore release;
            for (int i = 0; i < works; ++i) {
                Dispatch::background(priority, [&] {
                    QVERIFY(QThread::currentThread() != QCoreApplication::instance()->thread());
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
