#include <support/testmain.h>

#include <platform/dispatch.h>
#include <platform/notificationcenter.h>

#include <QSemaphore>
#include <QThread>

#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Priority = Dispatch::Priority;

class tst_dispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notifiesTheObserversOfThatNameAtOnce()
    {
        NotificationCenter center;
        QObject here;
        auto gone = std::make_unique<QObject>();
        QList<QThread *> reload;
        const auto noteThread = [&reload] { reload.append(QThread::currentThread()); };
        center.observe(u"reload"_s, &here, noteThread);
        center.observe(u"reload"_s, &here, noteThread);
        center.observe(u"Reload"_s, &here, [] { QFAIL("names differ in case"); });
        center.observe(u"reload"_s, gone.get(), [] { QFAIL("its observer is gone"); });
        gone.reset();

        const std::unique_ptr<QThread> poster(QThread::create([&center] { center.post(u"reload"_s); }));
        poster->start();
        QVERIFY(poster->wait());
        QCOMPARE(reload, QList<QThread *>(2, poster.get()));
        center.post(u"reload"_s);
        QCOMPARE(reload.size(), 4);
    }

    void runsWorkOnTheMainThreadInOrder()
    {
        auto context = std::make_unique<QObject>();
        auto gone = std::make_unique<QObject>();
        QList<int> order;
        const auto queue = [&](int number) {
            Dispatch::main(context.get(), [&order, number] {
                QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
                order.append(number);
            });
        };
        queue(1);
        const std::unique_ptr<QThread> other(QThread::create([&] {
            queue(2);
            Dispatch::main(gone.get(), [] { QFAIL("its context is gone"); });
            queue(3);
        }));
        other->start();
        QVERIFY(other->wait());
        QVERIFY2(order.isEmpty(), "not before the main thread is free");
        gone.reset();
        QTRY_COMPARE(order, (QList{1, 2, 3}));
    }

    void waitingWorkKeepsNoOtherFromRunning_data()
    {
        QTest::addColumn<Priority>("priority");
        QTest::newRow("low") << Priority::Low;
        QTest::newRow("high") << Priority::High;
    }
    void waitingWorkKeepsNoOtherFromRunning()
    {
        QFETCH(const Priority, priority);
        constexpr int works = 50; // more than any usual pool has threads
        QSemaphore allRun;
        QSemaphore done;
        for (int i = 0; i < works; ++i) {
            Dispatch::background(priority, [&] {
                QVERIFY(QThread::currentThread() != QCoreApplication::instance()->thread());
                allRun.release();
                if (allRun.tryAcquire(works, 20'000)) {
                    allRun.release(works);
                    done.release();
                }
            });
        }
        QVERIFY(done.tryAcquire(works, 25'000));
    }
};

OBLINO_TEST(tst_dispatch, QCoreApplication)

#include "tst_dispatch.moc"
