#include <support/place.h>
#include <support/testmain.h>

#include <platform/journal.h>

#include <QDir>
#include <QFile>
#include <QTest>

#include <cerrno>
#include <functional>

#include <fcntl.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray oldText = "one\n";
const QByteArray newText = QByteArray("two and a line\n").repeated(700);
const QByteArray otherText = "three, something else again\n";

} // namespace

/// What is made of a journal that is found.
class tst_saverecovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recovering_data();
    void recovering();
    void readOnlyFile_data();
    void readOnlyFile();
    void journalInTheWay_data();
    void journalInTheWay();
    void journalDecoding();
};

void tst_saverecovery::recovering_data()
{
    // In place of a journal's bytes: what to do to the one of a save from the old text to the new.
    using Change = std::function<void(QByteArray &)>;
    const auto row = [](const char *name, const Change &change, const QByteArray &found, bool isReplayed,
                        bool isKept) { QTest::newRow(name) << change << found << isReplayed << isKept; };
    QTest::addColumn<Change>("change");
    QTest::addColumn<QByteArray>("found");
    QTest::addColumn<bool>("isReplayed");
    QTest::addColumn<bool>("isKept");
    const Change whole = [](QByteArray &) {};
    row(
        "no journal", [](QByteArray &bytes) { bytes.clear(); }, otherText, false, false);
    row("the file holds the old text", whole, oldText, true, false);
    row("the file holds the new text", whole, newText, true, false);
    row("the file holds neither", whole, otherText, true, true);
    row("the file is missing", whole, {}, true, false);
    row(
        "torn journal", [](QByteArray &bytes) { bytes.chop(1000); }, oldText, false, true);
    row(
        "wrong checksum", [](QByteArray &bytes) { bytes.back() ^= 1; }, oldText, false, true);
}

void tst_saverecovery::recovering()
{
    QFETCH(std::function<void(QByteArray &)>, change);
    QFETCH(QByteArray, found);
    QFETCH(bool, isReplayed);
    QFETCH(bool, isKept);
    const Place place(found);
    SafeFile file = place.file();
    QByteArray journal = place.journal(oldText, newText);
    change(journal);
    if (!journal.isEmpty())
        put(file.journalPath(), journal);
    put(file.journalPath() + u".tmp"_s, "unfinished");

    QCOMPARE(file.recover().size(), isKept ? 1 : 0);
    QCOMPARE(contentOf(place.path), isReplayed ? newText : found);
    QCOMPARE(place.kept(), isKept ? QByteArrayList{isReplayed ? found : journal} : QByteArrayList());
    QCOMPARE(QDir(place.privateFolder).entryList(QDir::Files), QStringList());
}

void tst_saverecovery::readOnlyFile_data()
{
    QTest::addColumn<QByteArray>("found");
    QTest::newRow("it holds the new text, so nothing is left to do") << newText;
    QTest::newRow("it holds the old text, which cannot be helped now") << oldText;
}

void tst_saverecovery::readOnlyFile()
{
    QFETCH(QByteArray, found);
    struct ReadOnly : FileCalls
    {
        QByteArray path;
        int open(const QByteArray &name, int flags, mode_t mode) override
        {
            errno = EACCES;
            return name == path && (flags & O_ACCMODE) != O_RDONLY ? -1 : FileCalls::open(name, flags, mode);
        }
    } calls;
    const Place place(found);
    calls.path = place.encodedPath();
    SafeFile file(place.path, place.privateFolder, calls);
    put(file.journalPath(), place.journal(oldText, newText));
    QCOMPARE(file.recover().size(), found == newText ? 0 : 1);
    QCOMPARE(QFile::exists(file.journalPath()), found != newText);
    QCOMPARE(contentOf(place.path), found);
    QCOMPARE(file.read().bytes, newText);
}

void tst_saverecovery::journalInTheWay_data()
{
    QTest::addColumn<bool>("isOfThisFile");
    QTest::newRow("it stays while the file's folder is missing, then its text is kept") << true;
    QTest::newRow("it names another file and is left alone, then moved away") << false;
}

void tst_saverecovery::journalInTheWay()
{
    QFETCH(bool, isOfThisFile);
    const Place place;
    SafeFile file = place.file();
    const Journal stranger{"/another/file", sha256(oldText), sha256(newText), newText};
    const QByteArray journal = isOfThisFile ? place.journal(oldText, newText) : stranger.encoded();
    put(file.journalPath(), journal);
    QVERIFY(QDir(place.folder.path()).rmdir(u"docs"_s));
    QCOMPARE(file.recover().size(), isOfThisFile ? 1 : 0);
    QCOMPARE(contentOf(file.journalPath()), journal);
    QCOMPARE(file.read().outcome, FileReading::Outcome::Missing);
    QVERIFY(!file.write(otherText).written);

    QVERIFY(QDir(place.folder.path()).mkdir(u"docs"_s));
    QCOMPARE(file.write(otherText).notices.size(), 1);
    QCOMPARE(place.kept(), QByteArrayList{isOfThisFile ? newText : journal});
    QCOMPARE(file.read().bytes, otherText);
}

void tst_saverecovery::journalDecoding()
{
    for (const Journal &journal : {Journal{"/a/b", sha256("x"), sha256("some text"), "some text"},
                                   Journal{"/a/b", {}, sha256({}), {}}}) {
        const QByteArray bytes = journal.encoded();
        QVERIFY(Journal::decoded(bytes) == journal);
        QVERIFY(!Journal::decoded(bytes + '\0'));
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            QVERIFY2(!Journal::decoded(bytes.first(i)), qPrintable(QString::number(i)));
            QByteArray flipped = bytes;
            flipped[i] ^= 0x40;
            QVERIFY2(!Journal::decoded(flipped), qPrintable(QString::number(i)));
        }
    }
}

OBLINO_TEST(tst_saverecovery, QCoreApplication)
#include "tst_saverecovery.moc"
