#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/testmain.h>

#include <QFile>
#include <QProcess>
#include <QTest>

#include <cerrno>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray shortText = "one\n";
const QByteArray longText = QByteArray("two and a line\n").repeated(700);
const QByteArray thirdText = "three, something else again\n";
const QByteArray tornText = longText.first(5000) + shortText;

const struct
{
    const char *name;
    QByteArray before, after;
} saves[] = {{"a new file is created", {}, longText},
             {"a longer text makes the file grow", shortText, longText},
             {"a shorter text needs the file cut", longText, shortText},
             {"an empty text leaves no byte", shortText, {}}};

const struct
{
    const char *name;
    QByteArray content;
} foundByRecovery[] = {{"the file is as before the save", shortText},
                       {"the file is half written", tornText},
                       {"the file is as after the save", longText},
                       {"the file is missing", {}}};

const struct
{
    const char *name;
    int fault;
} faults[] = {{"the disk is broken", EIO},
              {"the disk is full", ENOSPC},
              {"the quota is used up", EDQUOT},
              {"a signal comes", EINTR},
              {"half is transferred", FaultyFileCalls::halfTransfer}};

/// @return the exit code, or -1 when the process was killed
int runVictim(const Place &place, const QString &action, int call, const QStringList &more = {})
{
    QProcess victim;
    victim.setProcessChannelMode(QProcess::ForwardedChannels);
    victim.start(QStringLiteral(SAVE_VICTIM),
                 QStringList{action, place.path, place.privateFolder, QString::number(call)} + more);
    return victim.waitForFinished() && victim.exitStatus() == QProcess::NormalExit ? victim.exitCode() : -1;
}

} // namespace

/// Whatever happens during a save, the file holds the old text or the new one, and a text that was said to be
/// saved is never lost.
class tst_crashsafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultAtAnyCall_data();
    void faultAtAnyCall();
    void killedAtAnyCall_data();
    void killedAtAnyCall();
    void killedWhileRecovering_data();
    void killedWhileRecovering();
    void faultWhileRecovering_data();
    void faultWhileRecovering();
    void fullDisk();
    void reserving_data();
    void reserving();
};

void tst_crashsafety::faultAtAnyCall_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("fault");
    for (const auto &save : saves) {
        for (const auto &fault : faults)
            QTest::addRow("%s: %s", save.name, fault.name) << save.before << save.after << fault.fault;
    }
}

void tst_crashsafety::faultAtAnyCall()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(int, fault);
    int covered = 0;
    for (bool struck = true; struck; ++covered) {
        for (const bool isRestarted : {true, false}) {
            const Place place(before);
            FaultyFileCalls calls;
            SafeFile file(place.path, place.privateFolder, calls);
            QVERIFY(file.recover().isEmpty() && file.read().bytes == before);
            calls.arm(covered + 1, fault);
            const FileWriting saved = file.write(after);
            struck = calls.hasStruck();
            calls.arm(0, 0);
            QCOMPARE(saved.error.isEmpty(), saved.written);
            QVERIFY(saved.written || (struck && fault != FaultyFileCalls::halfTransfer && fault != EINTR));
            QCOMPARE(statusOf(file.journalPath()).st_mode & 077, 0U);
            QCOMPARE(saved.notices, QStringList());
            if (isRestarted) {
                SafeFile next = place.file();
                static_cast<void>(next.recover());
                const QByteArray found = contentOf(place.path);
                QVERIFY(found == after || (!saved.written && found == before));
                QVERIFY(!QFile::exists(next.journalPath()));
            } else {
                const FileWriting again = file.write(thirdText);
                QVERIFY2(again.written, qPrintable(again.error));
                QCOMPARE(again.notices, QStringList());
                QCOMPARE(contentOf(place.path), thirdText);
            }
        }
    }
    QVERIFY2(covered > 12, qPrintable(QString::number(covered)));
}

void tst_crashsafety::killedAtAnyCall_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    for (const auto &save : saves)
        QTest::newRow(save.name) << save.before << save.after;
}

void tst_crashsafety::killedAtAnyCall()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    int killed = 0;
    for (int exitCode = -1; exitCode == -1; ++killed) {
        const Place place(before);
        exitCode = runVictim(place, u"save"_s, killed + 1, {QString::fromUtf8(after)});
        QVERIFY(exitCode == -1 || exitCode == 0);
        SafeFile file = place.file();
        static_cast<void>(file.recover());
        const QByteArray found = file.read().bytes;
        QCOMPARE(contentOf(place.path), found);
        QVERIFY(found == after || (exitCode == -1 && found == before));
        QVERIFY(file.write(thirdText).written);
        QCOMPARE(contentOf(place.path), thirdText);
    }
    QVERIFY2(killed > 12, qPrintable(QString::number(killed)));
}

void tst_crashsafety::killedWhileRecovering_data()
{
    QTest::addColumn<QByteArray>("found");
    for (const auto &[name, found] : foundByRecovery)
        QTest::newRow(name) << found;
}

void tst_crashsafety::killedWhileRecovering()
{
    QFETCH(QByteArray, found);
    int killed = 0;
    for (int exitCode = -1; exitCode == -1; ++killed) {
        const Place place(found);
        SafeFile file = place.file();
        put(file.journalPath(), place.journal(shortText, longText));
        exitCode = runVictim(place, u"recover"_s, killed + 1);
        static_cast<void>(file.recover());
        QCOMPARE(contentOf(place.path), longText);
        QVERIFY(!QFile::exists(file.journalPath()));
        QVERIFY(found != tornText || place.kept().contains(found));
    }
    QVERIFY2(killed > 8, qPrintable(QString::number(killed)));
}

void tst_crashsafety::faultWhileRecovering_data()
{
    QTest::addColumn<QByteArray>("found");
    QTest::addColumn<int>("fault");
    for (const auto &[name, found] : foundByRecovery) {
        for (const auto &fault : faults)
            QTest::addRow("%s: %s", name, fault.name) << found << fault.fault;
    }
}

void tst_crashsafety::faultWhileRecovering()
{
    QFETCH(QByteArray, found);
    QFETCH(int, fault);
    int failures = 0;
    int answeredFromJournal = 0;
    bool struck = true;
    for (int call = 1; struck; ++call) {
        for (const bool isRestarted : {true, false}) {
            const Place place(found);
            FaultyFileCalls calls;
            SafeFile file(place.path, place.privateFolder, calls);
            const QByteArray journal = place.journal(shortText, longText);
            put(file.journalPath(), journal);
            calls.arm(call, fault);
            const QStringList notices = file.recover();
            struck = calls.hasStruck();
            calls.arm(0, 0);
            const bool failed = contentOf(place.path) != longText;
            failures += failed ? 1 : 0;
            QVERIFY(!failed || (!notices.isEmpty() && contentOf(file.journalPath()) == journal));
            if (isRestarted) {
                static_cast<void>(place.file().recover());
                QCOMPARE(contentOf(place.path), longText);
                QVERIFY(found != tornText || place.kept().contains(found));
            } else {
                // The user goes on with the text of the journal, or it is kept when its place is needed.
                const FileReading reading = file.read();
                answeredFromJournal += failed && reading.bytes == longText ? 1 : 0;
                QVERIFY(file.write(thirdText).written);
                QCOMPARE(contentOf(place.path), thirdText);
                QVERIFY(reading.bytes == longText || place.kept().contains(longText));
                QVERIFY(found != tornText || reading.bytes == found || place.kept().contains(found));
            }
        }
    }
    const bool canFail = found != longText && fault != EINTR && fault != FaultyFileCalls::halfTransfer;
    QVERIFY2(canFail ? failures > 8 : failures == 0, qPrintable(QString::number(failures)));
    QVERIFY2(!canFail || answeredFromJournal > 2, qPrintable(QString::number(answeredFromJournal)));
}

void tst_crashsafety::fullDisk()
{
    const Place place(shortText);
    QCOMPARE(runVictim(place, u"save"_s, 0, {QString::fromUtf8(longText), u"4096"_s}), 1);
    QCOMPARE(contentOf(place.path), shortText);
    SafeFile file = place.file();
    QCOMPARE(file.recover(), QStringList());
    QCOMPARE(file.read().bytes, shortText);
    QVERIFY(file.write(longText).written);
    QCOMPARE(contentOf(place.path), longText);
}

void tst_crashsafety::reserving_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isSaved");
    QTest::newRow("the disk is full") << ENOSPC << false;
    QTest::newRow("the quota is used up") << EDQUOT << false;
    QTest::newRow("the disk is broken") << EIO << false;
    QTest::newRow("the file system cannot reserve") << EOPNOTSUPP << true;
    QTest::newRow("the system cannot reserve") << ENOSYS << true;
    QTest::newRow("the file system wants none of it") << EINVAL << true;
}

void tst_crashsafety::reserving()
{
    QFETCH(int, error);
    QFETCH(bool, isSaved);
    struct Unreserving : FileCalls
    {
        int error = 0;
        int reserve(int, off_t) override
        {
            errno = error;
            return -1;
        }
    } calls;
    calls.error = error;
    const Place place(shortText);
    SafeFile file(place.path, place.privateFolder, calls);
    QCOMPARE(file.read().bytes, shortText);
    QCOMPARE(file.write(longText).written, isSaved);
    QCOMPARE(contentOf(place.path), isSaved ? longText : shortText);
    QVERIFY(!QFile::exists(file.journalPath()));
}

OBLINO_TEST(tst_crashsafety, QCoreApplication)
#include "tst_crashsafety.moc"
