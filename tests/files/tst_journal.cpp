#include <support/table.h>
#include <support/testmain.h>

#include <files/journal.h>
#include <files/sha256.h>

#include <QTest>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using State = Journal::State;

namespace {

/// For each letter a block of 4096 bytes.
QByteArray blocks(const char *letters)
{
    QByteArray bytes;
    for (const char letter : QByteArrayView(letters))
        bytes += QByteArray(4096, letter);
    return bytes;
}

} // namespace

class tst_journal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsATornFileFromAnotherPrograms_data()
    {
        const QByteArray seam = QByteArray(1000, 'C') + QByteArray(3096, 'c');
        const QByteArray nothing;
        const Table<QByteArray, QByteArray, QByteArray, State> row;
        row("old", blocks("abc"), blocks("ABC"), blocks("abc"), State::Old);
        row("new", blocks("abc"), blocks("ABC"), blocks("ABC"), State::New);
        row("the first blocks written", blocks("abc"), blocks("ABC"), blocks("ABc"), State::Torn);
        row("blocks written in any order", blocks("abc"), blocks("ABC"), blocks("aBc"), State::Torn);
        row("one block torn", blocks("abc"), blocks("ABC"), blocks("Ab") + seam, State::Torn);
        row("two blocks torn", blocks("acc"), blocks("ACC"), blocks("A") + seam + seam, State::Other);
        row("torn the wrong way round", blocks("c"), blocks("C"), seam.last(3096) + seam.first(1000),
            State::Other);
        row("a block of neither", blocks("abc"), blocks("ABC"), blocks("Axc"), State::Other);
        row("a block at another place", blocks("abc"), blocks("ABC"), blocks("bac"), State::Other);
        row("grown half way", "abc", blocks("ABC"), blocks("AB"), State::Torn);
        row("grown, a block not written yet", "abc", blocks("ABC"),
            "abc" + QByteArray(4093, '\0') + blocks("BC"), State::Torn);
        row("longer than both", "abc", blocks("A"), blocks("AB"), State::Other);
        row("overwritten, not yet cut", blocks("abc"), "AB", "AB" + blocks("abc").sliced(2), State::Torn);
        row("cut, but not overwritten", blocks("abc"), blocks("AB"), blocks("ab"), State::CutShort);
        row("shorter than both", blocks("abc"), blocks("AB"), blocks("A"), State::CutShort);
        row("emptied", blocks("abc"), blocks("AB"), nothing, State::CutShort);
        row("a line more", "one\n", "one\ntwo\n", "one\nTWO\n", State::Other);
        row("the old file was empty", "", blocks("AB"), blocks("A"), State::Torn);
        row("nobody knows the old file", nothing, blocks("AB"), blocks("ab"), State::Other);
        row("nor that, but it begins like the new one", nothing, blocks("AB"), blocks("A"), State::Torn);
    }
    void tellsATornFileFromAnotherPrograms()
    {
        const auto [before, after, found, state] = Table<QByteArray, QByteArray, QByteArray, State>::cells();
        const Journal journal{"/a/file", before.isNull() ? std::nullopt : std::optional(before), after};
        QCOMPARE(journal.stateOf(found), state);
    }

    void holdsTheOldTextAsADifference()
    {
        const QByteArray common(100'000, 'x');
        for (const auto &[before, after] :
             {std::pair("aaaa"_ba, "aa"_ba), {"aa", "aaaa"}, {"xyz", "abc"}, {"", "abc"}}) {
            const Journal journal{"/a/file", before, after};
            QCOMPARE(Journal::decoded(journal.encoded()), journal);
            const Journal large{"/a/file", common + before + common, common + after + common};
            QCOMPARE(Journal::decoded(large.encoded()), large);
            QVERIFY(large.encoded().size() < 2 * common.size() + 300);
        }
    }

    void isNotTakenForOneOfAnotherRelease()
    {
        QByteArray bytes = Journal{"/a/file", "old", "new"}.encoded().chopped(sha256Size);
        QVERIFY(Journal::decoded(bytes + sha256(bytes)));
        ++bytes[5]; // the version, after four bytes that tell a journal
        QCOMPARE(Journal::decoded(bytes + sha256(bytes)), std::nullopt);
    }
};

OBLINO_TEST(tst_journal, QCoreApplication)
#include "tst_journal.moc"
