#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/testmain.h>

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
    void faultWhileRecovering_data() { killedWhileRecovering_data(); }
    void faultWhileRecovering();
    void fullDisk();
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
            QVERIFY(saved.written || (struck && fault != FaultyFileCalls::halfTransfer));
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
    QTest::newRow("the file is as before the save") << shortText;
    QTest::newRow("the file is half written") << tornText;
    QTest::newRow("the file is as after the save") << longText;
    QTest::newRow("the file is missing") << QByteArray();
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

void tst_crashsafety::faultWhileRecovering()
{
    QFETCH(QByteArray, found);
    int failures = 0;
    bool struck = true;
    for (int call = 1; struck; ++call) {
        for (const bool isRestarted : {true, false}) {
            const Place place(found);
            FaultyFileCalls calls;
            SafeFile file(place.path, place.privateFolder, calls);
            const QByteArray journal = place.journal(shortText, longText);
            put(file.journalPath(), journal);
            calls.arm(call, EIO);
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
                QVERIFY(file.write(thirdText).written);
                QCOMPARE(contentOf(place.path), thirdText);
                QVERIFY(reading.bytes == longText || place.kept().contains(longText));
                QVERIFY(found != tornText || reading.bytes == found || place.kept().contains(found));
            }
        }
    }
    QVERIFY2(failures > 8 || found == longText, qPrintable(QString::number(failures)));
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

OBLINO_TEST(tst_crashsafety, QCoreApplication)
#include "tst_crashsafety.moc"
