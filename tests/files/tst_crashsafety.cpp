#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>

#include <files/journal.h>

#include <QDir>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray shortText = "one\n";
const QByteArray longText = QByteArray("two and a line\n").repeated(700);
const QByteArray thirdText = "three, something else again\n";
const QByteArray tornText = longText.first(5000);

constexpr int death = FaultyFileCalls::death;

using Change = std::function<QByteArray(const Place &)>;

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
                const bool isKept = before.isEmpty() || place.keptDaily() == QByteArrayList{before};
                const bool isSaid =
                    saved.notices.size() == 1 && saved.notices.first().startsWith(u"No version"_s);
                QVERIFY(isKept || (struck && !isHarmless(fault) && (isSaid || !saved.written)));
                QVERIFY(saved.notices.isEmpty() || (isSaid && !isKept) || fault <= death);
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
            } else {
                // The user goes on with the text of the journal, or it is kept when its place is needed.
                const FileReading reading = file.read();
                QVERIFY(file.write(thirdText).written);
                QCOMPARE(contentOf(place.path), thirdText);
                QVERIFY(reading.bytes == text || place.kept().contains(text));
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
        // The bytes of a journal; "whole" is the one of a save from the short text to the long one.
        const Change whole = [](const Place &place) { return place.journal(shortText, longText); };
        const Change none = [](const Place &) { return QByteArray(); };
        const Change torn = [=](const Place &place) { return whole(place).chopped(1000); };
        const Change flipped = [=](const Place &place) {
            QByteArray bytes = whole(place);
            bytes[bytes.size() / 2] ^= 1;
            return bytes;
        };
        const Change strange = [](const Place &) {
            return Journal{"/another/file", shortText, longText}.encoded();
        };
        const Change unknown = [](const Place &place) {
            return Journal{place.encodedPath(), {}, longText}.encoded();
        };
        const auto from = [](const QByteArray &before) {
            return Change([=](const Place &place) { return place.journal(before, longText); });
        };
        const QByteArray otherLong = longText.first(8192) + QByteArray(5000, '+');
        const Table<Change, QByteArray, QByteArray, QByteArrayList> row;
        const auto gone = QByteArrayList();
        row("no journal", none, thirdText, thirdText, gone);
        row("the file holds the old text", whole, shortText, longText, gone);
        row("the file holds the new text", whole, longText, longText, gone);
        row("the file is torn between both", whole, tornText, longText, gone);
        row("torn in a block that both have", from(otherLong), longText.first(8292) + otherLong.mid(8292),
            longText, gone);
        row("the file holds another list", whole, thirdText, thirdText, {longText});
        row("the old text and more", whole, shortText + thirdText, shortText + thirdText, {longText});
        row("the new text and more", whole, longText + thirdText, longText + thirdText, {longText});
        row("an old text that nobody knows", unknown, shortText, shortText, {longText});
        row("cut short by another program", from(otherLong), otherLong.first(5), longText,
            {otherLong.first(5)});
        row("emptied by another program", from(otherLong), "", longText, gone);
        row("the file is missing", whole, {}, longText, gone);
        row("torn journal", torn, shortText, shortText, {"journal"});
        row("damaged journal", flipped, shortText, shortText, {"journal"});
        row("a journal of another file", strange, shortText, shortText, {"journal"});
    }
    void makesOfAJournalWhatItCan()
    {
        auto [change, found, expected, kept] = Table<Change, QByteArray, QByteArray, QByteArrayList>::cells();
        const Place place(found);
        if (!found.isNull())
            put(place.path, found);
        SafeFile file = place.file();
        const QByteArray journal = change(place);
        if (!journal.isEmpty())
            put(file.journalPath(), journal);
        put(file.journalPath() + u".tmp"_s, "unfinished");

        QStringList notices = file.recover();
        QCOMPARE(contentOf(place.path), expected);
        QCOMPARE(file.read().bytes, expected);
        notices += file.write(expected).notices;
        QCOMPARE(notices.size(), kept.size());
        std::ranges::replace(kept, QByteArray("journal"), journal);
        QCOMPARE(place.kept(), kept);
        QCOMPARE(QDir(place.privateFolder).entryList(QDir::Files), QStringList());
    }
};

OBLINO_TEST(tst_crashsafety, QCoreApplication)
#include "tst_crashsafety.moc"
