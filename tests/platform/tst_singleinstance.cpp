#include <support/place.h>
#include <support/testmain.h>

#include <platform/singleinstance.h>

#include <QSignalSpy>

#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Claim = SingleInstance::Claim;

class tst_singleinstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qunsetenv("TMPDIR");
        m_home = std::make_unique<TemporaryHome>();
        m_folder = m_home->privateFolder();
        qputenv("TMPDIR", QFile::encodeName(m_home->path({}))); // for the sockets that killed programs leave
    }

    void everyLaterStartRaisesTheFirstThoughOneBeforeWasKilled()
    {
        const pid_t killed = ::fork();
        if (killed == 0) {
            SingleInstance instance(m_folder);
            ::raise(instance.claim() == Claim::First ? SIGKILL : SIGTERM);
        }
        int status = 0;
        QCOMPARE(::waitpid(killed, &status, 0), killed);
        QCOMPARE(WTERMSIG(status), SIGKILL);

        SingleInstance first(m_folder);
        const QSignalSpy raises(&first, &SingleInstance::raiseRequested);
        QCOMPARE(first.claim(), Claim::First);
        for (int i = 1; i <= 2; ++i) {
            auto later = std::async(std::launch::async, [this] { return SingleInstance(m_folder).claim(); });
            QTRY_COMPARE(raises.size(), i);
            QCOMPARE(later.get(), Claim::RaisedOther);
        }
        QCOMPARE(SingleInstance(m_home->path(u"another"_s)).claim(), Claim::First);
        QCOMPARE(statusOf(m_folder).st_mode & 0777, 0700U);
    }

    void waitsForOneThatHoldsTheDataAndIsSilent()
    {
        put(m_folder + u"/oblino.lock"_s, {});
        QFile lock(m_folder + u"/oblino.lock"_s);
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QCOMPARE(::flock(lock.handle(), LOCK_EX), 0);
        QCOMPARE(SingleInstance(m_folder).claim(), Claim::OtherSilent);
        auto later = std::async(std::launch::async, [this] { return SingleInstance(m_folder).claim(); });
        QCOMPARE(later.wait_for(std::chrono::milliseconds(150)), std::future_status::timeout);
        lock.close();
        QCOMPARE(later.get(), Claim::First);
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
    QString m_folder;
};

OBLINO_TEST(tst_singleinstance, QCoreApplication)

#include "tst_singleinstance.moc"
