#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>

#include <platform/journal.h>

#include <QDir>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray shortText = "one\n";
const QByteArray longText = QByteArray("two and a line\n").repeated(700);
const QByteArray thirdText = "three, something else again\n";
const QByteArray tornText = longText.first(5000) + shortText;

constexpr int death = FaultyFileCalls::death;

/// Adds to each of these rows each of the faults.
void addRows(const QList<std::tuple<const char *, QByteArray, QByteArray>> &rows)
{
    const std::pair<const char *, int> faults[] = {
        {"the disk is broken", EIO},      {"the disk is full", ENOSPC},
        {"a signal comes", EINTR},        {"half of it works", FaultyFileCalls::half},
        {"the program is killed", death}, {"killed midway", FaultyFileCalls::deathMidway}};
    const Table<QByteArray, QByteArray, int> row;
    for (const auto &[name, before, after] : rows) {
        for (const auto &[faultName, fault] : faults)
            row((QByteArray(name) + ": " + faultName).constData(), before, after, fault);
    }
}

/// Whether such a fault is to be overcome without a word.
bool isHarmless(int fault)
{
    return fault == EINTR || fault == FaultyFileCalls::half;
}

/// What the file holds after the next start of the program, for which nothing but the journal's text is safe.
QByteArray afterRestart(const Place &place)
{
    FaultyFileCalls calls(place.encodedPath());
    SafeFile file(place.path, place.privateFolder, calls);
    calls.names = {QFile::encodeName(file.journalPath()), place.encodedPath()};
    calls.bytes[place.encodedPath()] = false;
    static_cast<void>(file.recover());
    const bool isDone = !calls.isTooEarly && !QFile::exists(file.journalPath());
    return isDone ? contentOf(place.path) : "not recovered";
}

} // namespace

/// Whatever happens during a save, the file holds the old text or the new one, and a text that was said to be
/// saved is never lost.
class tst_crashsafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesOrKeepsTheOldTextWhicheverCallFails_data()
    {
        addRows({{"a new file is created", {}, longText},
                 {"a longer text makes the file grow", shortText, longText},
                 {"a shorter text needs the file cut", longText, shortText},
                 {"an empty text leaves no byte", shortText, {}}});
    }
    void savesOrKeepsTheOldTextWhicheverCallFails()
    {
        const auto [before, after, fault] = Table<QByteArray, QByteArray, int>::cells();
        int call = 1;
        bool struck = true;
        for (; struck; ++call) {
            for (const bool isRestarted : {true, false}) {
                const Place place(before);
                FaultyFileCalls calls(place.encodedPath());
                SafeFile file(place.path, place.privateFolder, calls);
                QVERIFY(file.recover().isEmpty() && file.read().bytes == before);
                calls.arm(call, fault);
                const FileWriting saved = file.write(after);
                struck = calls.hasStruck();
                calls.arm(0, 0);
                QCOMPARE(saved.error.isEmpty(), saved.written);
                QVERIFY(saved.written ? contentOf(place.path) == after : struck && !isHarmless(fault));
                QCOMPARE(saved.notices, QStringList());
                QCOMPARE(statusOf(file.journalPath()).st_mode & 077, 0U);
                if (isRestarted || fault <= death) {
                    const QByteArray found = afterRestart(place);
                    QVERIFY(found == after || (!saved.written && found == before));
                } else {
                    const FileWriting again = file.write(thirdText);
                    QVERIFY2(again.written && again.notices.isEmpty(), qPrintable(again.error));
                    QCOMPARE(contentOf(place.path), thirdText);
                    QVERIFY(!QFile::exists(file.journalPath()));
                }
                QVERIFY2(!calls.isTooEarly, qPrintable(u"a power cut after call %1"_s.arg(call - 1)));
            }
        }
        QVERIFY2(call > 12, qPrintable(QString::number(call)));
    }

    void completesASaveWhicheverCallFails_data()
    {
        addRows({{"the file is as before the save", shortText, longText},
                 {"the file is half written", tornText, longText},
                 {"the file is as after the save", longText, longText},
                 {"the file is missing", {}, longText}});
    }
    void completesASaveWhicheverCallFails()
    {
        const auto [found, text, fault] = Table<QByteArray, QByteArray, int>::cells();
        int failures = 0;
        bool struck = true;
        for (int call = 1; struck; ++call) {
            const Place place(found);
            FaultyFileCalls calls(place.encodedPath());
            SafeFile file(place.path, place.privateFolder, calls);
            const QByteArray journal = place.journal(shortText, text);
            put(file.journalPath(), journal);
            calls.names = {QFile::encodeName(file.journalPath())};
            calls.arm(call, fault);
            const QStringList notices = file.recover();
            struck = calls.hasStruck();
            calls.arm(0, 0);
            const bool failed = contentOf(place.path) != text;
            failures += failed ? 1 : 0;
            QVERIFY(!failed || (!notices.isEmpty() && contentOf(file.journalPath()) == journal));
            if (fault <= death) {
                QCOMPARE(afterRestart(place), text);
                QVERIFY(found != tornText || place.kept().contains(found));
            } else {
                // The user goes on with the text of the journal, or it is kept when its place is needed.
                const FileReading reading = file.read();
                QVERIFY(file.write(thirdText).written);
                QCOMPARE(contentOf(place.path), thirdText);
                QVERIFY(reading.bytes == text || place.kept().contains(text));
                QVERIFY(found != tornText || reading.bytes == found || place.kept().contains(found));
            }
            QVERIFY2(!calls.isTooEarly, qPrintable(u"a power cut after call %1"_s.arg(call - 1)));
        }
        const bool canFail = found != text && !isHarmless(fault);
        QVERIFY2(canFail ? failures > 8 : failures == 0, qPrintable(QString::number(failures)));
    }

    void aKilledProcessLeavesAWholeText()
    {
        const Place place(shortText);
        for (int milliseconds = 0; milliseconds < 30; ++milliseconds) {
            const pid_t child = ::fork();
            if (child == 0) {
                SafeFile file = place.file();
                static_cast<void>(file.read());
                for (bool isLong = true;; isLong = !isLong)
                    static_cast<void>(file.write(isLong ? longText : shortText));
            }
            QTest::qSleep(milliseconds);
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            SafeFile file = place.file();
            static_cast<void>(file.recover()); // it keeps a torn file, too
            const QByteArray found = file.read().bytes;
            QVERIFY2(found == shortText || found == longText, found);
        }
    }

    void makesOfAJournalWhatItCan_data()
    {
        // In place of a journal's bytes: what to do to the one of a save from the short text to the long one.
        using Change = std::function<QByteArray(QByteArray)>;
        const Change whole = [](const QByteArray &bytes) { return bytes; };
        const Change none = [](const QByteArray &) { return QByteArray(); };
        const Change torn = [](const QByteArray &bytes) { return bytes.chopped(1000); };
        const Change flipped = [](QByteArray bytes) {
            bytes[bytes.size() / 2] ^= 1;
            return bytes;
        };
        const Change strange = [](const QByteArray &) {
            return Journal{"/another/file", sha256(shortText), sha256(longText), longText}.encoded();
        };
        const Table<Change, QByteArray, bool, bool> row;
        row("no journal", none, thirdText, false, false);
        row("the file holds the old text", whole, shortText, true, false);
        row("the file holds the new text", whole, longText, true, false);
        row("the file holds neither", whole, thirdText, true, true);
        row("the file is missing", whole, {}, true, false);
        row("torn journal", torn, shortText, false, true);
        row("damaged journal", flipped, shortText, false, true);
        row("a journal of another file", strange, shortText, false, true);
    }
    void makesOfAJournalWhatItCan()
    {
        const auto [change, found, isReplayed, isKept] =
            Table<std::function<QByteArray(QByteArray)>, QByteArray, bool, bool>::cells();
        const Place place(found);
        SafeFile file = place.file();
        const QByteArray journal = change(place.journal(shortText, longText));
        if (!journal.isEmpty())
            put(file.journalPath(), journal);
        put(file.journalPath() + u".tmp"_s, "unfinished");

        QStringList notices = file.recover();
        QCOMPARE(contentOf(place.path), isReplayed ? longText : found);
        QCOMPARE(file.read().bytes, isReplayed ? longText : found);
        notices += file.write("next").notices;
        QCOMPARE(notices.size(), isKept ? 1 : 0);
        QCOMPARE(place.kept(), isKept ? QByteArrayList{isReplayed ? found : journal} : QByteArrayList());
        QCOMPARE(QDir(place.privateFolder).entryList(QDir::Files), QStringList());
    }
};

OBLINO_TEST(tst_crashsafety, QCoreApplication)
#include "tst_crashsafety.moc"
