#include "../support/diskmodel.h"
#include "../support/faultyfilecalls.h"

#include <platform/documents.h>
#include <platform/journal.h>
#include <platform/openfile.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <functional>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Outcome = FileReading::Outcome;

namespace {

const QByteArray shortText = "one\n";
const QByteArray longText = QByteArray("two and a line\n").repeated(700);
const QByteArray thirdText = "three, something else again\n";

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status : (struct stat){};
}

/// A user's folder and a private folder, gone with the test.
struct Place
{
    QTemporaryDir folder{QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm/safefile"_s : QString()};
    QString privateFolder = folder.filePath(u"data/oblino"_s);
    QString path = folder.filePath(u"docs/plan.txt"_s);

    explicit Place(const QByteArray &content = {})
    {
        QDir(folder.path()).mkdir(u"docs"_s);
        if (!content.isEmpty())
            put(path, content);
    }

    [[nodiscard]] SafeFile file() const { return SafeFile(path, privateFolder); }

    [[nodiscard]] QByteArray encodedPath() const { return withoutLinks(path); }

    /// The contents of the recovery folder's files.
    [[nodiscard]] QByteArrayList kept() const
    {
        const QDir recovery(privateFolder + u"/recovery"_s);
        QByteArrayList contents;
        for (const QString &name : recovery.entryList(QDir::Files, QDir::Name))
            contents << contentOf(recovery.filePath(name));
        return contents;
    }

    /// @return the exit code, or -1 when the process was killed
    [[nodiscard]] int runVictim(const QString &action, int call, const QStringList &more = {}) const
    {
        QProcess victim;
        victim.setProcessChannelMode(QProcess::ForwardedChannels);
        victim.start(QStringLiteral(SAVE_VICTIM),
                     QStringList{action, path, privateFolder, QString::number(call)} + more);
        return victim.waitForFinished() && victim.exitStatus() == QProcess::NormalExit ? victim.exitCode() : -1;
    }
};

/// The texts before and after a save, as rows of the tests that interrupt it.
const struct
{
    const char *name;
    QByteArray before, after;
} saves[] = {{"a new file is created", {}, longText},
             {"a longer text makes the file grow", shortText, longText},
             {"a shorter text needs the file cut", longText, shortText},
             {"an empty text leaves no byte", shortText, {}}};

} // namespace

class TestSafeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultAtAnyCall_data();
    void faultAtAnyCall();
    void killedAtAnyCall_data();
    void killedAtAnyCall();
    void killedWhileRecovering_data();
    void killedWhileRecovering();
    void failedReplay();
    void powerCut();
    void everySyncIsNeeded();
    void fullDisk();
    void otherPrograms_data();
    void otherPrograms();
    void recovering_data();
    void recovering();
    void journalOfUnreadSave();
    void journalDecoding();
    void linksAndModeStay();
    void noRegularFile_data();
    void noRegularFile();
    void failedRead();
    void settingAside();
    void documents();
};

void TestSafeFile::faultAtAnyCall_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("fault");
    const std::pair<const char *, int> faults[] = {{"the disk is broken", EIO},
                                                   {"the disk is full", ENOSPC},
                                                   {"the quota is used up", EDQUOT},
                                                   {"a signal comes", EINTR},
                                                   {"half is transferred", FaultyFileCalls::halfTransfer}};
    for (const auto &save : saves) {
        for (const auto &[name, fault] : faults)
            QTest::addRow("%s: %s", save.name, name) << save.before << save.after << fault;
    }
}

void TestSafeFile::faultAtAnyCall()
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
            QCOMPARE(file.recover(), QStringList());
            QVERIFY(file.read().outcome != Outcome::Failed);
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
                const QByteArray found = next.read().bytes;
                QCOMPARE(contentOf(place.path), found);
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

void TestSafeFile::killedAtAnyCall_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    for (const auto &save : saves)
        QTest::newRow(save.name) << save.before << save.after;
}

void TestSafeFile::killedAtAnyCall()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    int killed = 0;
    for (int exitCode = -1; exitCode == -1; ++killed) {
        const Place place(before);
        exitCode = place.runVictim(u"save"_s, killed + 1, {QString::fromUtf8(after)});
        QVERIFY(exitCode == -1 || exitCode == 0);
        SafeFile file = place.file();
        static_cast<void>(file.recover());
        const QByteArray found = contentOf(place.path);
        QVERIFY(found == after || (exitCode == -1 && found == before));
        QVERIFY(!QFile::exists(file.journalPath()));
        QCOMPARE(file.read().bytes, found);
        QVERIFY(file.write(thirdText).written);
        QCOMPARE(contentOf(place.path), thirdText);
    }
    QVERIFY2(killed > 12, qPrintable(QString::number(killed)));
}

void TestSafeFile::killedWhileRecovering_data()
{
    QTest::addColumn<QByteArray>("found");
    QTest::newRow("the file is as before the save") << shortText;
    QTest::newRow("the file is half written") << longText.first(5000) + shortText;
    QTest::newRow("the file is missing") << QByteArray();
}

void TestSafeFile::killedWhileRecovering()
{
    QFETCH(QByteArray, found);
    int killed = 0;
    for (int exitCode = -1; exitCode == -1; ++killed) {
        const Place place(found);
        SafeFile file = place.file();
        put(file.journalPath(),
            Journal{place.encodedPath(), sha256(shortText), sha256(longText), longText}.encoded());
        exitCode = place.runVictim(u"recover"_s, killed + 1);
        static_cast<void>(file.recover());
        QCOMPARE(contentOf(place.path), longText);
        QVERIFY(!QFile::exists(file.journalPath()));
        QVERIFY(found.isEmpty() || found == shortText || place.kept().contains(found));
    }
    QVERIFY2(killed > 8, qPrintable(QString::number(killed)));
}

/// A replay that fails at any call loses neither text and is made up for at the next start.
void TestSafeFile::failedReplay()
{
    const QByteArray torn = longText.first(5000) + shortText;
    bool struck = true;
    int failures = 0;
    for (int call = 1; struck; ++call) {
        const Place place(torn);
        FaultyFileCalls calls;
        SafeFile file(place.path, place.privateFolder, calls);
        const Journal journal{place.encodedPath(), sha256(shortText), sha256(longText), longText};
        put(file.journalPath(), journal.encoded());
        calls.arm(call, EIO);
        QVERIFY(!file.recover().isEmpty());
        struck = calls.hasStruck();
        if (contentOf(place.path) != longText || QFile::exists(file.journalPath())) {
            ++failures;
            QCOMPARE(contentOf(file.journalPath()), journal.encoded());
        }
        SafeFile next = place.file();
        static_cast<void>(next.recover());
        QCOMPARE(contentOf(place.path), longText);
        QVERIFY(place.kept().contains(torn));

        // The same once more without a restart: the user goes on with the text of the journal.
        put(place.path, torn);
        put(file.journalPath(), journal.encoded());
        calls.arm(call, EIO);
        SafeFile same(place.path, place.privateFolder, calls);
        static_cast<void>(same.recover());
        calls.arm(0, 0);
        const bool isUnfinished = QFile::exists(file.journalPath());
        const QByteArray text = same.read().bytes;
        QVERIFY(text == longText || (isUnfinished && text == torn));
        QVERIFY(same.write(thirdText).written);
        QCOMPARE(contentOf(place.path), thirdText);
        QVERIFY(text == longText || place.kept().contains(longText));
    }
    QVERIFY2(failures > 8, qPrintable(QString::number(failures)));
}

namespace {

/// Saves some texts on a disk and cuts the power at every moment of that, and again while recovering.
class PowerCuts
{
public:
    int skippedSync = 0;         ///< of the saves
    int skippedRecoverySync = 0; ///< of each recovery after a first power cut

    [[nodiscard]] QByteArrayList broken() const { return m_broken; }
    [[nodiscard]] size_t states() const { return m_checked.size(); }
    [[nodiscard]] int syncs() const { return m_syncs; }

    void run()
    {
        DiskModel disk;
        disk.skipSync(skippedSync);
        SafeFile file(path, u"/disk/data/oblino"_s, disk);
        static_cast<void>(file.recover());
        static_cast<void>(file.read());
        size_t moment = 0;
        QByteArray before;
        for (const QByteArray &text : {QByteArray(40, 'a'), QByteArray(70, 'b'), QByteArray(20, 'c')}) {
            QVERIFY(file.write(text).written);
            for (; moment < disk.moments().size(); ++moment)
                cut(disk.moments()[moment], {before, text}, true);
            cut(disk.moments().back(), {text}, true);
            before = text;
        }
        m_syncs = disk.syncs();
    }

private:
    const QString path = u"/disk/docs/plan.txt"_s;

    void cut(const DiskModel::Moment &moment, const QByteArrayList &allowed, bool isFirstCut)
    {
        for (const DiskModel::State &state : moment.afterPowerCut()) {
            if (m_checked.insert(state.key() + allowed.join('/') + (isFirstCut ? '1' : '2')).second)
                check(state, allowed, isFirstCut);
        }
    }

    void check(const DiskModel::State &state, const QByteArrayList &allowed, bool isFirstCut)
    {
        DiskModel disk(state);
        disk.skipSync(isFirstCut ? skippedRecoverySync : 0);
        SafeFile file(path, u"/disk/data/oblino"_s, disk);
        static_cast<void>(file.recover());
        const QByteArray found = disk.state().content(path.toUtf8());
        if (!allowed.contains(found))
            m_broken << found;
        if (!isFirstCut)
            return;
        for (const DiskModel::Moment &moment : disk.moments())
            cut(moment, allowed, false);
        cut(disk.moments().back(), {found}, false);
    }

    std::set<QByteArray> m_checked;
    QByteArrayList m_broken;
    int m_syncs = 0;
};

} // namespace

void TestSafeFile::powerCut()
{
    PowerCuts cuts;
    cuts.run();
    QCOMPARE(cuts.broken(), QByteArrayList());
    QVERIFY2(cuts.states() > 500, qPrintable(QString::number(cuts.states())));
}

void TestSafeFile::everySyncIsNeeded()
{
    PowerCuts all;
    all.run();
    QVERIFY(all.syncs() >= 10);
    for (int sync = 1; sync <= all.syncs(); ++sync) {
        PowerCuts cuts;
        cuts.skippedSync = sync;
        cuts.run();
        QVERIFY2(!cuts.broken().isEmpty(), qPrintable(u"sync %1 of the saves"_s.arg(sync)));
    }
    for (int sync = 1; sync <= 2; ++sync) {
        PowerCuts cuts;
        cuts.skippedRecoverySync = sync;
        cuts.run();
        QVERIFY2(!cuts.broken().isEmpty(), qPrintable(u"sync %1 of recovering"_s.arg(sync)));
    }
}

void TestSafeFile::fullDisk()
{
    const Place place(shortText);
    QCOMPARE(place.runVictim(u"save"_s, 0, {QString::fromUtf8(longText), u"4096"_s}), 1);
    QCOMPARE(contentOf(place.path), shortText);
    SafeFile file = place.file();
    QCOMPARE(file.recover(), QStringList());
    QCOMPARE(file.read().bytes, shortText);
    QVERIFY(file.write(longText).written);
    QCOMPARE(contentOf(place.path), longText);
}

using Deed = std::function<void(const Place &)>;

void TestSafeFile::otherPrograms_data()
{
    QTest::addColumn<bool>("isRead");
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<QByteArrayList>("kept");
    const Deed nothing = [](const Place &) {};
    const Deed sameSize = [](const Place &place) {
        const timespec longAgo[2] = {{1, 0}, {1, 0}};
        put(place.path, QByteArray(shortText.size(), 'x'));
        ::utimensat(AT_FDCWD, place.encodedPath().constData(), longAgo, 0);
    };
    const Deed replaced = [](const Place &place) {
        put(place.path + u".new"_s, thirdText);
        ::rename((place.encodedPath() + ".new").constData(), place.encodedPath().constData());
    };
    QTest::newRow("nobody touched it") << true << nothing << QByteArrayList();
    QTest::newRow("other content") << true << Deed([](const Place &place) { put(place.path, thirdText); })
                                   << QByteArrayList{thirdText};
    QTest::newRow("other content of the same size, time set back")
        << true << sameSize << QByteArrayList{QByteArray(shortText.size(), 'x')};
    QTest::newRow("another file in its place") << true << replaced << QByteArrayList{thirdText};
    QTest::newRow("emptied") << true << Deed([](const Place &place) { put(place.path, {}); })
                             << QByteArrayList{QByteArray()};
    QTest::newRow("the same content written again")
        << true << Deed([](const Place &place) { put(place.path, shortText); }) << QByteArrayList();
    QTest::newRow("deleted") << true << Deed([](const Place &place) { QFile::remove(place.path); })
                             << QByteArrayList();
    QTest::newRow("never read") << false << nothing << QByteArrayList{shortText};
}

void TestSafeFile::otherPrograms()
{
    QFETCH(bool, isRead);
    QFETCH(Deed, deed);
    QFETCH(QByteArrayList, kept);
    const Place place(shortText);
    SafeFile file = place.file();
    if (isRead)
        QCOMPARE(file.read().bytes, shortText);
    deed(place);
    for (const QByteArray &text : {longText, shortText}) {
        const FileWriting saved = file.write(text);
        QVERIFY2(saved.written, qPrintable(saved.error));
        QCOMPARE(saved.notices.size(), text == longText ? kept.size() : 0);
        QCOMPARE(contentOf(place.path), text);
        QCOMPARE(place.kept(), kept);
    }
}

void TestSafeFile::recovering_data()
{
    const auto journalOf = [](const char *path) {
        return Journal{path, sha256(shortText), sha256(longText), longText}.encoded();
    };
    // "%" stands for the path of the file.
    const QByteArray whole = journalOf("%");
    QByteArray flipped = whole;
    flipped[whole.size() / 2] ^= 1;
    const QByteArray torn = longText.first(3000) + thirdText;
    QTest::addColumn<QByteArray>("journal");
    QTest::addColumn<QByteArray>("found");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<bool>("journalStays");
    QTest::addColumn<QByteArrayList>("kept");
    const QByteArrayList nothing;
    QTest::newRow("no journal") << QByteArray() << torn << torn << false << nothing;
    QTest::newRow("the file holds the old text") << whole << shortText << longText << false << nothing;
    QTest::newRow("the file holds the new text") << whole << longText << longText << false << nothing;
    QTest::newRow("the file holds neither") << whole << torn << longText << false << QByteArrayList{torn};
    QTest::newRow("the file is missing") << whole << QByteArray() << longText << false << nothing;
    QTest::newRow("the file's folder is missing")
        << whole << QByteArray("no folder") << QByteArray() << true << nothing;
    QTest::newRow("torn journal") << whole.first(2000) << shortText << shortText << false
                                  << QByteArrayList{whole.first(2000)};
    QTest::newRow("wrong checksum") << flipped << shortText << shortText << false << QByteArrayList{flipped};
    QTest::newRow("another file's journal")
        << journalOf("/tmp/elsewhere") << shortText << shortText << true << nothing;
}

void TestSafeFile::recovering()
{
    QFETCH(QByteArray, journal);
    QFETCH(QByteArray, found);
    QFETCH(QByteArray, expected);
    QFETCH(bool, journalStays);
    QFETCH(QByteArrayList, kept);
    const bool hasFolder = found != "no folder";
    const Place place(hasFolder ? found : QByteArray());
    if (!hasFolder)
        QVERIFY(QDir(place.folder.path()).rmdir(u"docs"_s));
    SafeFile file = place.file();
    if (std::optional<Journal> whole = Journal::decoded(journal)) {
        if (whole->path == "%")
            whole->path = place.encodedPath();
        journal = whole->encoded();
    }
    if (!journal.isEmpty())
        put(file.journalPath(), journal);
    put(file.journalPath() + u".tmp"_s, "unfinished");

    const QStringList notices = file.recover();
    QCOMPARE(contentOf(place.path), expected);
    QCOMPARE(place.kept(), kept);
    QCOMPARE(notices.size(), hasFolder ? kept.size() : 1);
    QCOMPARE(contentOf(file.journalPath()), journalStays ? journal : QByteArray());
    QVERIFY(!QFile::exists(file.journalPath() + u".tmp"_s));
    QCOMPARE(file.read().outcome, hasFolder ? Outcome::Read : Outcome::Missing);
}

/// A journal that was not replayed is kept when a save needs its place.
void TestSafeFile::journalOfUnreadSave()
{
    for (const QByteArray &path : {QByteArray("/tmp/elsewhere"), QByteArray()}) {
        const Place place(shortText);
        SafeFile file = place.file();
        const Journal journal{path.isEmpty() ? place.encodedPath() : path, {}, sha256(longText), longText};
        put(file.journalPath(), journal.encoded());
        QCOMPARE(file.read().bytes, shortText);
        const FileWriting saved = file.write(thirdText);
        QVERIFY2(saved.written, qPrintable(saved.error));
        QCOMPARE(saved.notices.size(), 1);
        QCOMPARE(place.kept(), QByteArrayList{path.isEmpty() ? longText : journal.encoded()});
        QCOMPARE(contentOf(place.path), thirdText);
    }
}

void TestSafeFile::journalDecoding()
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

void TestSafeFile::linksAndModeStay()
{
    const Place place(shortText);
    const QString link = place.folder.filePath(u"link"_s);
    const QString hardLink = place.folder.filePath(u"hard"_s);
    QCOMPARE(::chmod(place.encodedPath().constData(), 0640), 0);
    QCOMPARE(::link(place.encodedPath().constData(), QFile::encodeName(hardLink).constData()), 0);
    QVERIFY(QFile::link(u"docs/plan.txt"_s, link));
    const struct stat before = statusOf(place.path);

    SafeFile file(link, place.privateFolder);
    QCOMPARE(file.journalPath(), place.file().journalPath());
    QCOMPARE(file.read().bytes, shortText);
    QVERIFY(file.write(longText).written);
    QCOMPARE(contentOf(hardLink), longText);
    QCOMPARE(statusOf(place.path).st_ino, before.st_ino);
    QCOMPARE(statusOf(place.path).st_mode, before.st_mode);
    QVERIFY(QFileInfo(link).isSymLink());

    // Now the link leads nowhere, and then to the file that the save creates.
    QVERIFY(QFile::remove(place.path));
    QCOMPARE(file.read().outcome, Outcome::Missing);
    QVERIFY(file.write({}).written);
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(statusOf(place.path).st_size, 0);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    QCOMPARE(statusOf(place.path).st_mode & 0777, 0644 & ~mask);
    QCOMPARE(statusOf(place.privateFolder).st_mode & 0777, 0700U);
}

void TestSafeFile::noRegularFile_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<mode_t>("type");
    QTest::newRow("a pipe that nobody writes to")
        << Deed([](const Place &place) { QCOMPARE(::mkfifo(place.encodedPath().constData(), 0600), 0); })
        << mode_t{S_IFIFO};
    QTest::newRow("a folder") << Deed([](const Place &place) { QVERIFY(QDir().mkdir(place.path)); })
                              << mode_t{S_IFDIR};
    QTest::newRow("a device") << Deed([](const Place &place) { QFile::link(u"/dev/null"_s, place.path); })
                              << mode_t{S_IFCHR};
}

void TestSafeFile::noRegularFile()
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
    const FileWriting writing = file.write(longText);
    QVERIFY(!writing.written && !writing.error.isEmpty());
    QCOMPARE(statusOf(place.path).st_mode & S_IFMT, type);
}

/// What could not be read is not overwritten, unless it can be read and kept by then.
void TestSafeFile::failedRead()
{
    const Place place(shortText);
    FaultyFileCalls calls;
    SafeFile file(place.path, place.privateFolder, calls);
    QVERIFY(file.recover().isEmpty());
    calls.arm(3, EIO);
    QCOMPARE(file.read().outcome, Outcome::Failed);
    calls.arm(3, EIO);
    QVERIFY(!file.write(longText).written);
    QVERIFY(calls.hasStruck());
    QCOMPARE(contentOf(place.path), shortText);
    QCOMPARE(file.write(longText).notices.size(), 1);
    QCOMPARE(place.kept(), QByteArrayList{shortText});
    QCOMPARE(contentOf(place.path), longText);
}

void TestSafeFile::settingAside()
{
    const Place place;
    FaultyFileCalls calls;
    SafeFile file(place.path, place.privateFolder, calls);
    QCOMPARE(file.setAside("first"), QString());
    const QByteArray first = contentOf(file.asidePath());
    calls.arm(3, ENOSPC);
    QVERIFY(!file.setAside("lost").isEmpty());
    QCOMPARE(contentOf(file.asidePath()), first);
    QCOMPARE(file.setAside("second\n"), QString());
    QCOMPARE(statusOf(file.asidePath()).st_mode & 0777, 0600U);
    const QRegularExpression expected(u"^(== \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d plan.txt ==\n)first\n"
                                      "== .* plan.txt ==\nsecond\n$"_s);
    QVERIFY(expected.match(QString::fromUtf8(contentOf(file.asidePath()))).hasMatch());
}

void TestSafeFile::documents()
{
    QVERIFY(!Documents(std::nullopt, u"/nowhere"_s).file(u"plan.txt"_s));

    const Place place(thirdText);
    put(place.file().journalPath(), Journal{place.encodedPath(), {}, sha256(longText), longText}.encoded());
    Documents documents(place.folder.filePath(u"docs"_s), place.privateFolder);
    SafeFile *file = documents.file(u"plan.txt"_s);
    QVERIFY(file);
    QCOMPARE(documents.file(u"plan.txt"_s), file);
    QCOMPARE(file->read().bytes, longText);
    QCOMPARE(documents.takeNotices().size(), 1);
    QCOMPARE(documents.takeNotices().size(), 0);

    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(place.folder.filePath(u"home"_s)));
    qunsetenv("XDG_CONFIG_HOME");
    const std::optional<QString> folder = Documents::standard().folder();
    qputenv("HOME", home);
    QVERIFY(folder && folder->startsWith(place.folder.path()) && QFileInfo(*folder).isDir());
}

QTEST_GUILESS_MAIN(TestSafeFile)
#include "tst_safefile.moc"
