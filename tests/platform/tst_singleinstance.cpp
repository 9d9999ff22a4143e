#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <platform/singleinstance.h>

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QSignalSpy>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Claim = SingleInstance::Claim;

namespace {

QByteArray lineOf(QProcess &process)
{
    (void)QTest::qWaitFor([&process] { return process.canReadLine(); }, 10'000);
    return process.readLine();
}

// Another process that claims the folder, killed with the object.
class Claimer : public QProcess
{
public:
    explicit Claimer(const QString &folder) { start(QStringLiteral(INSTANCE_CLAIMER), {folder}); }
    Claimer() = default;
    ~Claimer() override
    {
        kill();
        waitForFinished();
    }
};

} // namespace

class tst_singleinstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qunsetenv("TMPDIR");
        m_home = std::make_unique<TemporaryHome>();
        qputenv("TMPDIR", QFile::encodeName(m_home->path({}))); // for the sockets that killed programs leave
    }

    void everyLaterStartRaisesTheFirst()
    {
        Claimer first(m_home->privateFolder());
        QCOMPARE(lineOf(first), "first\n");
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(SingleInstance(m_home->privateFolder()).claim(), Claim::RaisedOther);
            QCOMPARE(lineOf(first), "raise\n");
        }
        QCOMPARE(SingleInstance(m_home->path(u"another"_s)).claim(), Claim::First);
        struct stat folder = {};
        QCOMPARE(::stat(qPrintable(m_home->privateFolder()), &folder), 0);
        QCOMPARE(folder.st_mode & 0777, 0700U);
    }

    void aKilledOneLeavesNothingInTheWay()
    {
        {
            Claimer killed(m_home->privateFolder());
            QCOMPARE(lineOf(killed), "first\n");
        }
        SingleInstance next(m_home->privateFolder());
        QSignalSpy raises(&next, &SingleInstance::raiseRequested);
        QCOMPARE(next.claim(), Claim::First);
        Claimer later(m_home->privateFolder());
        QVERIFY2(raises.wait(), "it listens where the killed one did");
        QCOMPARE(lineOf(later), "not first\n");
    }

    void waitsForOneThatHoldsTheDataAndIsSilent_data()
    {
        QTest::addColumn<std::chrono::milliseconds>("heldFor");
        QTest::addColumn<Claim>("claim");
        QTest::newRow("it hangs") << 60'000ms << Claim::OtherSilent;
        QTest::newRow("it ends meanwhile") << 150ms << Claim::First;
    }
    void waitsForOneThatHoldsTheDataAndIsSilent()
    {
        QFETCH(const std::chrono::milliseconds, heldFor);
        QVERIFY(QDir().mkpath(m_home->privateFolder()));
        const QByteArray path = QFile::encodeName(m_home->privateFolder() + u"/oblino.lock"_s);
        const int lock = ::open(path.constData(), O_RDWR | O_CREAT, 0600);
        QCOMPARE(::flock(lock, LOCK_EX), 0);
        QSemaphore claimed;
        std::thread holder([&] {
            (void)claimed.tryAcquire(1, static_cast<int>(heldFor.count()));
            ::close(lock);
        });
        const QDeadlineTimer deadline(4s);
        const Claim claim = SingleInstance(m_home->privateFolder()).claim();
        claimed.release();
        holder.join();
        QTEST(claim, "claim");
        QVERIFY(!deadline.hasExpired());
    }

    void aReadOnlyFolderIsGranted()
    {
        const QByteArray folder = QFile::encodeName(m_home->path(QString()));
        QCOMPARE(::chmod(folder.constData(), 0555), 0);
        Claimer unprivileged;
        startUnprivileged(unprivileged, QStringLiteral(INSTANCE_CLAIMER), {m_home->privateFolder()});
        QCOMPARE(lineOf(unprivileged), "first\n");
        QCOMPARE(::chmod(folder.constData(), 0700), 0);
        QVERIFY(!QFile::exists(m_home->privateFolder()));
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
};

OBLINO_TEST(tst_singleinstance, QCoreApplication)

#include "tst_singleinstance.moc"
