#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/test.h>

#include <files/journal.h>
#include <files/sha256.h>

using State = Journal::State;
using Text = std::optional<QByteArray>;

namespace {

const QByteArray shortText = "one\n";
const QByteArray longText = QByteArray("two and a line\n").repeated(700);
const QByteArray thirdText = "three, something else again\n";

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

/// For each letter a block of 4096 bytes.
QByteArray blocks(const char *letters)
{
    QByteArray bytes;
    for (const char letter : QByteArrayView(letters))
        bytes += QByteArray(4096, letter);
    return bytes;
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
        bool struck = true;
        for (int call = 1; struck; ++call) {
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
                const bool isSaid = saved.notices.value(0).startsWith(u"No version"_s);
                QVERIFY(isKept || (struck && !isHarmless(fault) && (isSaid || !saved.written)));
                QVERIFY(saved.notices.isEmpty() || (isSaid && !isKept) || fault <= death);
                QCOMPARE(statusOf(file.journalPath()).st_mode & 077, 0U);
                if (isRestarted || fault <= death) {
                    const QByteArray found = afterRestart(place);
                    QVERIFY(found == after || (!saved.written && found == before));
                } else {
                    const FileWriting again = file.write(thirdText);
                    QVERIFY2(again.written && again.notices.isEmpty(), qPrintable(again.error));
                    QVERIFY(contentOf(place.path) == thirdText && !QFile::exists(file.journalPath()));
                }
                QVERIFY2(!calls.isTooEarly, qPrintable(u"a power cut after call %1"_s.arg(call - 1)));
            }
        }
    }

    void completesASaveWhicheverCallFails_data()
    {
        addRows({{"the file is as before the save", shortText, longText},
                 {"the file is half written", longText.first(5000), longText},
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
            const QByteArray journal = Journal{place.encodedPath(), shortText, text}.encoded();
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
                QVERIFY(file.write(thirdText).written && contentOf(place.path) == thirdText);
                QVERIFY(reading.bytes == text || place.kept().contains(text));
            }
            QVERIFY2(!calls.isTooEarly, qPrintable(u"a power cut after call %1"_s.arg(call - 1)));
        }
        const bool canFail = found != text && !isHarmless(fault);
        QVERIFY2(canFail ? failures > 8 : failures == 0, qPrintable(QString::number(failures)));
    }

    void tellsATornFileFromAnotherPrograms_data()
    {
        const QByteArray seam = QByteArray(1000, 'C') + QByteArray(3096, 'c');
        const QByteArray unwritten(4093, '\0');
        const Table<Text, QByteArray, Text, State> row; // before and after the save, what is found
        row("missing", blocks("abc"), blocks("ABC"), {}, State::New);
        row("blocks written in any order", blocks("abc"), blocks("ABC"), blocks("aBc"), State::Torn);
        row("one block torn", blocks("abc"), blocks("ABC"), blocks("Ab") + seam, State::Torn);
        row("two blocks torn", blocks("acc"), blocks("ACC"), blocks("A") + seam + seam, State::Other);
        row("torn the wrong way", blocks("c"), blocks("C"), seam.last(3096) + seam.first(1000), State::Other);
        row("a block of neither", blocks("abc"), blocks("ABC"), blocks("Axc"), State::Other);
        row("a block at another place", blocks("abc"), blocks("ABC"), blocks("bac"), State::Other);
        row("grown half way", "abc", blocks("ABC"), blocks("AB"), State::Torn);
        row("a block not written yet", "abc", blocks("ABC"), "abc" + unwritten + blocks("BC"), State::Torn);
        row("longer than both", "abc", blocks("A"), blocks("AB"), State::Other);
        row("overwritten, not yet cut", blocks("abc"), "AB", "AB" + blocks("abc").sliced(2), State::Torn);
        row("cut by another program", blocks("abc"), blocks("AB"), blocks("ab"), State::CutShort);
        row("shorter than both", blocks("abc"), blocks("AB"), blocks("A"), State::CutShort);
        row("emptied", blocks("abc"), blocks("AB"), "", State::CutShort);
        row("a line more", "one\n", "one\ntwo\n", "one\nTWO\n", State::Other);
        row("the old text and more", shortText, longText, shortText + thirdText, State::Other);
        row("the old file was empty", "", blocks("AB"), blocks("A"), State::Torn);
        row("nobody knows the old file", {}, blocks("AB"), blocks("ab"), State::Other);
        row("nor that, but it begins like the new one", {}, blocks("AB"), blocks("A"), State::Torn);
    }
    void tellsATornFileFromAnotherPrograms()
    {
        const auto [before, after, found, state] = Table<Text, QByteArray, Text, State>::cells();
        const Place place;
        if (found)
            put(place.path, *found);
        SafeFile file = place.file();
        put(file.journalPath(), Journal{place.encodedPath(), before, after}.encoded());
        put(file.journalPath() + u".tmp"_s, "unfinished");
        const QStringList notices = file.recover();
        const QByteArray expected = state == State::Other ? *found : after;
        QCOMPARE(contentOf(place.path), expected);
        QVERIFY(file.read().bytes == expected && file.write(expected).notices.isEmpty());
        const bool isCut = state == State::CutShort && !found->isEmpty();
        QCOMPARE(place.kept(), state == State::Other ? QByteArrayList{after}
                               : isCut               ? QByteArrayList{*found}
                                                     : QByteArrayList());
        QCOMPARE(notices.size(), place.kept().size());
        QCOMPARE(QDir(place.privateFolder).entryList(QDir::Files), QStringList());
    }

    void keepsAJournalThatItCannotUse()
    {
        const Place place(shortText);
        const QByteArray whole = Journal{place.encodedPath(), shortText, longText}.encoded();
        QByteArray flipped = whole;
        flipped[flipped.size() / 2] ^= 1;
        QByteArray newer = whole.chopped(sha256Size);
        ++newer[5]; // the version, after four bytes that tell a journal
        newer += sha256(newer);
        const QByteArray ofAnother = Journal{"/another/file", shortText, longText}.encoded();
        QByteArrayList kept;
        for (const QByteArray &journal : {whole.chopped(1000), flipped, newer, ofAnother}) {
            SafeFile file = place.file();
            put(file.journalPath(), journal);
            QStringList notices = file.recover();
            QCOMPARE(file.read().bytes, shortText);
            notices += file.write(thirdText).notices;
            QVERIFY(notices.size() == 1 && file.write(shortText).notices.isEmpty());
            kept += journal;
            QVERIFY(place.kept().size() == kept.size() && place.kept().contains(journal));
        }
    }
};

OBLINO_TEST(tst_crashsafety, QCoreApplication)
#include "tst_crashsafety.moc"
