#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/test.h>

using Outcome = FileReading::Outcome;
using Deed = std::function<void(const Place &)>;

namespace {

const QByteArray oldText = "one\n";
const QByteArray newText = QByteArray("two and a line\n").repeated(700);
const QByteArray otherText = "three, something else again\n";

/// The calls of this machine, but the user's file cannot be opened for writing.
class RefusingFileCalls : public FileCalls
{
public:
    bool mayOpen = true;

    int open(const QByteArray &path, int flags, mode_t mode) override
    {
        errno = EACCES;
        const bool refuses = !mayOpen && path.endsWith("/plan.txt") && (flags & O_ACCMODE) != O_RDONLY;
        return refuses ? -1 : FileCalls::open(path, flags, mode);
    }
};

} // namespace

class tst_safefile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherPrograms_data()
    {
        const auto putting = [](const QByteArray &bytes) {
            return Deed([=](const Place &place) { put(place.path, bytes); });
        };
        const Deed replaced = [](const Place &place) {
            QVERIFY(QFile::rename(place.path, place.path + u".old"_s));
            put(place.path, otherText);
        };
        const Deed deleted = [](const Place &place) { QVERIFY(QFile::remove(place.path)); };
        const Table<bool, Deed, QByteArrayList> row;
        row("other content", true, putting(otherText), {otherText});
        row("another file in its place", true, replaced, {otherText});
        row("emptied", true, putting({}), {QByteArray()});
        row("only touched, the content is the same", true, putting(oldText), {});
        row("deleted, so nothing to keep", true, deleted, {});
        row("there but never read", false, putting(oldText), {oldText});
    }
    void otherPrograms()
    {
        const auto [isRead, deed, kept] = Table<bool, Deed, QByteArrayList>::cells();
        const Place place(oldText);
        SafeFile file = place.file();
        QVERIFY(!isRead || file.read().bytes == oldText);
        deed(place);
        for (const QByteArray &text : {newText, oldText}) {
            const FileWriting saved = file.write(text);
            QVERIFY2(saved.written, qPrintable(saved.error));
            QCOMPARE(saved.notices.size(), text == newText ? kept.size() : 0);
            QVERIFY(contentOf(place.path) == text && place.kept() == kept);
        }
    }

    void linksAndModeStay()
    {
        const Place place(oldText);
        const QString link = place.folder.filePath(u"link"_s);
        const QString hardLink = place.folder.filePath(u"hard"_s);
        QCOMPARE(::chmod(place.encodedPath().constData(), 0640), 0);
        QCOMPARE(::link(place.encodedPath().constData(), QFile::encodeName(hardLink).constData()), 0);
        QVERIFY(QFile::link(u"docs/plan.txt"_s, link));
        const struct stat before = statusOf(place.path);

        SafeFile file(link, place.privateFolder);
        QCOMPARE(file.journalPath(), place.file().journalPath());
        QVERIFY(file.read().bytes == oldText && file.write(newText).written);
        QCOMPARE(contentOf(hardLink), newText);
        QCOMPARE(statusOf(place.path).st_mode, before.st_mode);

        // Now the link leads nowhere, and then to the file that the save creates.
        QVERIFY(QFile::remove(place.path));
        QVERIFY(file.read().outcome == Outcome::Missing && file.write({}).written);
        QVERIFY(QFileInfo(link).isSymLink() && QFile::exists(place.path));
        QCOMPARE(statusOf(place.privateFolder).st_mode, S_IFDIR | 0700U);
    }

    void refusesWhatIsNoRegularFile()
    {
        const Deed deeds[] = {
            [](const Place &place) { QCOMPARE(::mkfifo(place.encodedPath().constData(), 0600), 0); },
            [](const Place &place) { QVERIFY(QDir().mkdir(place.path)); },
            [](const Place &place) { QVERIFY(QFile::link(u"/dev/null"_s, place.path)); }};
        for (const Deed &deed : deeds) {
            const Place place;
            deed(place);
            const mode_t mode = statusOf(place.path).st_mode;
            SafeFile file = place.file();
            QCOMPARE(file.recover(), QStringList());
            QVERIFY(file.read().outcome == Outcome::Failed && !file.read().error.isEmpty());
            QVERIFY(!file.write(newText).written && statusOf(place.path).st_mode == mode);
        }
    }

    /// What could not be read is not overwritten, unless it can be read and kept by then.
    void failedRead()
    {
        const Place place(oldText);
        FaultyFileCalls calls;
        SafeFile file(place.path, place.privateFolder, calls);
        const int firstPread = 3; // after opening the file and asking for its status
        calls.arm(firstPread, EIO);
        QCOMPARE(file.read().outcome, Outcome::Failed);
        calls.arm(firstPread, EIO);
        QVERIFY(!file.write(newText).written && contentOf(place.path) == oldText);
        QCOMPARE(file.write(newText).notices.size(), 1);
        QVERIFY(place.kept() == QByteArrayList{oldText} && contentOf(place.path) == newText);
    }

    void keepsOneVersionADay()
    {
        const Place place;
        put(place.recoveryFolder + u"/2024-03-07 12.00.00 [daily] plan.txt"_s, "older");
        put(place.recoveryFolder + u"/2024-03-06 12.00.00 [daily] plan.txt"_s, "too old");
        QVERIFY(place.file().write(oldText).written);
        QCOMPARE(place.keptDaily(), (QByteArrayList{"older"})); // there was nothing before
        for (int start = 0; start < 3; ++start) {
            SafeFile file = place.file();
            QVERIFY(file.write(file.read().bytes).written);
            QCOMPARE(place.keptDaily().contains(oldText), start > 0); // nothing was changed
            for (const QByteArray &text : {newText, otherText}) {
                QVERIFY(file.write(text).notices.isEmpty());
                QCOMPARE(place.keptDaily(), (QByteArrayList{oldText}));
            }
        }
    }

    void keepsTheTextOfAFileThatCannotBeSaved()
    {
        for (const bool isFolderAway : {false, true}) {
            const Place place(oldText);
            const QString docs = QFileInfo(place.path).path();
            RefusingFileCalls calls;
            SafeFile file(place.path, place.privateFolder, calls);
            QCOMPARE(file.read().bytes, oldText);
            calls.mayOpen = isFolderAway;
            QVERIFY(!isFolderAway || QFile::rename(docs, docs + u".away"_s));
            for (const QByteArray &text : {otherText, newText}) {
                const FileWriting saved = file.write(text);
                QVERIFY(!saved.written && saved.error.startsWith(u"“plan.txt” could not be saved: "_s));
            }
            const QStringList notices = SafeFile(place.path, place.privateFolder, calls).recover();
            QVERIFY(notices.size() == 1 && notices.first().contains(u"could not be completed"_s));
            calls.mayOpen = true;
            QVERIFY(!isFolderAway || QFile::rename(docs + u".away"_s, docs));
            QCOMPARE(SafeFile(place.path, place.privateFolder, calls).recover(), QStringList());
            QVERIFY(contentOf(place.path) == newText && !QFile::exists(file.journalPath()));
        }
    }
};

OBLINO_TEST(tst_safefile, QCoreApplication)
#include "tst_safefile.moc"
