#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/testmain.h>

#include <platform/documents.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <cerrno>
#include <functional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Outcome = FileReading::Outcome;
using Deed = std::function<void(const Place &)>;

namespace {

const QByteArray oldText = "one\n";
const QByteArray newText = QByteArray("two and a line\n").repeated(700);
const QByteArray otherText = "three, something else again\n";

} // namespace

class tst_safefile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherPrograms_data();
    void otherPrograms();
    void linksAndModeStay();
    void noRegularFile_data();
    void noRegularFile();
    void failedRead();
    void settingAside();
    void documents();
    void standardFolders();
};

void tst_safefile::otherPrograms_data()
{
    const auto putting = [](const QByteArray &bytes) {
        return Deed([=](const Place &place) { put(place.path, bytes); });
    };
    const QByteArray sameSize(oldText.size(), 'x');
    const Deed timeSetBack = [=](const Place &place) {
        const struct stat before = statusOf(place.path);
        const timespec times[] = {before.st_atim, before.st_mtim};
        put(place.path, sameSize);
        // The clock of the file system ticks slowly, and a change within one tick cannot be told.
        do
            QCOMPARE(::utimensat(AT_FDCWD, place.encodedPath().constData(), times, 0), 0);
        while (statusOf(place.path).st_ctim.tv_nsec == before.st_ctim.tv_nsec);
    };
    const Deed replaced = [](const Place &place) {
        put(place.path + u".new"_s, otherText);
        QCOMPARE(::rename((place.encodedPath() + ".new").constData(), place.encodedPath().constData()), 0);
    };
    const Deed nothing = [](const Place &) {};
    const Deed deleted = [](const Place &place) { QVERIFY(QFile::remove(place.path)); };
    using List = QByteArrayList;
    QTest::addColumn<bool>("isRead");
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<List>("kept");
    QTest::newRow("nobody touched it") << true << nothing << List();
    QTest::newRow("other content") << true << putting(otherText) << List{otherText};
    QTest::newRow("same size, time set back") << true << timeSetBack << List{sameSize};
    QTest::newRow("another file in its place") << true << replaced << List{otherText};
    QTest::newRow("emptied") << true << putting({}) << List{QByteArray()};
    QTest::newRow("only touched, the content is the same") << true << putting(oldText) << List();
    QTest::newRow("deleted, so nothing to keep") << true << deleted << List();
    QTest::newRow("there but never read") << false << nothing << List{oldText};
}

void tst_safefile::otherPrograms()
{
    QFETCH(bool, isRead);
    QFETCH(Deed, deed);
    QFETCH(QByteArrayList, kept);
    const Place place(oldText);
    SafeFile file = place.file();
    QVERIFY(!isRead || file.read().bytes == oldText);
    deed(place);
    for (const QByteArray &text : {newText, oldText}) {
        const FileWriting saved = file.write(text);
        QVERIFY2(saved.written, qPrintable(saved.error));
        QCOMPARE(saved.notices.size(), text == newText ? kept.size() : 0);
        QCOMPARE(contentOf(place.path), text);
        QCOMPARE(place.kept(), kept);
    }
}

void tst_safefile::linksAndModeStay()
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
    QCOMPARE(file.read().bytes, oldText);
    QVERIFY(file.write(newText).written);
    QCOMPARE(contentOf(hardLink), newText);
    QCOMPARE(statusOf(place.path).st_ino, before.st_ino);
    QCOMPARE(statusOf(place.path).st_mode, before.st_mode);

    // Now the link leads nowhere, and then to the file that the save creates.
    QVERIFY(QFile::remove(place.path));
    QCOMPARE(file.read().outcome, Outcome::Missing);
    const mode_t mask = ::umask(027);
    const FileWriting saved = file.write({});
    ::umask(mask);
    QVERIFY2(saved.written, qPrintable(saved.error));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(statusOf(place.path).st_size, 0);
    QCOMPARE(statusOf(place.path).st_mode, S_IFREG | 0640U);
    QCOMPARE(statusOf(place.privateFolder).st_mode, S_IFDIR | 0700U);
}

void tst_safefile::noRegularFile_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<mode_t>("type");
    const Deed pipe = [](const Place &place) { ::mkfifo(place.encodedPath().constData(), 0600); };
    const Deed folder = [](const Place &place) { QDir().mkdir(place.path); };
    const Deed device = [](const Place &place) { QFile::link(u"/dev/null"_s, place.path); };
    QTest::newRow("a pipe that nobody writes to") << pipe << mode_t{S_IFIFO};
    QTest::newRow("a folder") << folder << mode_t{S_IFDIR};
    QTest::newRow("a device") << device << mode_t{S_IFCHR};
}

void tst_safefile::noRegularFile()
{
    QFETCH(Deed, deed);
    QFETCH(mode_t, type);
    const Place place;
    deed(place);
    SafeFile file = place.file();
    QCOMPARE(file.recover(), QStringList());
    const FileReading reading = file.read();
    QCOMPARE(reading.outcome, Outcome::Failed);
    QVERIFY(!reading.error.isEmpty());
    const FileWriting writing = file.write(newText);
    QVERIFY(!writing.written && !writing.error.isEmpty());
    QCOMPARE(statusOf(place.path).st_mode & S_IFMT, type);
}

/// What could not be read is not overwritten, unless it can be read and kept by then.
void tst_safefile::failedRead()
{
    const Place place(oldText);
    FaultyFileCalls calls;
    SafeFile file(place.path, place.privateFolder, calls);
    QCOMPARE(file.read().bytes, oldText);
    const int firstPread = 3; // after opening the file and asking for its status
    calls.arm(firstPread, EIO);
    QCOMPARE(file.read().outcome, Outcome::Failed);
    calls.arm(firstPread, EIO);
    QVERIFY(!file.write(newText).written && calls.hasStruck());
    QCOMPARE(contentOf(place.path), oldText);
    QCOMPARE(file.write(newText).notices.size(), 1);
    QCOMPARE(place.kept(), QByteArrayList{oldText});
    QCOMPARE(contentOf(place.path), newText);
}

void tst_safefile::settingAside()
{
    const Place place;
    FaultyFileCalls calls;
    SafeFile file(place.path, place.privateFolder, calls);
    QCOMPARE(file.setAside("first"), QString());
    const QByteArray first = contentOf(file.asidePath());
    for (int call = 1; call <= 4; ++call) {
        calls.arm(call, ENOSPC);
        QVERIFY(!file.setAside("lost").isEmpty());
        QCOMPARE(contentOf(file.asidePath()), first);
    }
    calls.arm(0, 0);
    QCOMPARE(file.setAside("second\n"), QString());
    QCOMPARE(statusOf(file.asidePath()).st_mode, S_IFREG | 0600U);
    const QString heading = u"== \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d plan\\.txt ==\n"_s;
    const QRegularExpression expected(u'^' + heading + u"first\n"_s + heading + u"second\n$"_s);
    QVERIFY(expected.match(QString::fromUtf8(contentOf(file.asidePath()))).hasMatch());
}

void tst_safefile::documents()
{
    QVERIFY(!Documents(std::nullopt, u"/nowhere"_s).file(u"plan.txt"_s));
    const Place place(otherText);
    put(place.file().journalPath(), place.journal(oldText, newText));
    Documents documents(place.folder.filePath(u"docs"_s), place.privateFolder);
    SafeFile *file = documents.file(u"plan.txt"_s);
    QVERIFY(file);
    QCOMPARE(documents.file(u"plan.txt"_s), file);
    QCOMPARE(file->read().bytes, newText);
    QCOMPARE(documents.takeNotices().size(), 1);
    QCOMPARE(documents.takeNotices().size(), 0);
}

void tst_safefile::standardFolders()
{
    const Place place;
    const QByteArray home = qgetenv("HOME");
    qunsetenv("XDG_CONFIG_HOME");
    qputenv("HOME", place.folder.filePath(u"home"_s).toLocal8Bit());
    const std::optional<QString> folder = Documents::standard().folder();
    qputenv("HOME", home);
    QVERIFY(folder && folder->startsWith(place.folder.path()) && QFileInfo(*folder).isDir());
}

OBLINO_TEST(tst_safefile, QCoreApplication)
#include "tst_safefile.moc"
