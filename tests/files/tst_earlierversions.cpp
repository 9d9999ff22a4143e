#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <files/earlierversions.h>

#include <QTest>

#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Reason = VersionReason;

namespace {

/// The folders that take a rescued text, in their order, in a place of the test's own.
struct Folders : Place
{
    QStringList paths = {recoveryFolder, folder.filePath(u"docs"_s), folder.filePath(u"state/oblino"_s),
                         folder.filePath(u"tmp"_s)};
    EarlierVersions versions{u"plan.txt"_s, paths};

    Folders()
    {
        QVERIFY(QDir(folder.path()).mkdir(u"tmp"_s));
        QVERIFY(QFile::setPermissions(paths.last(), QFileDevice::Permissions(0x7777)));
    }
    /// The files of the place that hold that text.
    [[nodiscard]] QStringList allWith(const QByteArray &text) const
    {
        QStringList names;
        for (QDirIterator all(folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             all.hasNext();) {
            const QString file = all.next();
            if (contentOf(file) == text)
                names << file;
        }
        return names;
    }
};

} // namespace

class tst_earlierversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsWhatWasKeptNewestFirst()
    {
        Folders place;
        const QStringList kept = {
            u"2024-03-07 09.05.01 [daily] plan.txt"_s, u"2024-03-07 09.05.01 (2) [daily] plan.txt"_s,
            u"2024-03-08 09.05.01 [unheard] plan.txt"_s, // a later release may know that
            u"2024-03-09 09.05.01 [damaged] plan.txt.journal"_s};
        const QStringList others = {u"2024-03-08 09.05.01 [daily] my plan.txt"_s,
                                    u"2024-03-08 09.05.01 [daily] plan.txt~"_s,
                                    u"2024-13-08 09.05.01 [daily] plan.txt"_s, u"plan.txt"_s};
        for (const QString &name : kept + others)
            put(place.paths[0] + u'/' + name, name.toUtf8());
        put(place.paths[1] + u"/2024-03-08 09.05.01 [daily] plan.txt"_s, "the user's own copy");
        put(place.paths[1] + u"/2024-03-10 09.05.01 [rescued] plan.txt"_s, "rescued");
        QCOMPARE(place.versions.keep("kept now", Reason::Restored), QString());
        QByteArrayList contents;
        for (const EarlierVersion &version : place.versions.list())
            contents << place.versions.read(version).bytes;
        QCOMPARE(contents, (QByteArrayList{"kept now", "rescued", kept[3].toUtf8(), kept[2].toUtf8(),
                                           kept[1].toUtf8(), kept[0].toUtf8()}));
        const QList<EarlierVersion> list = place.versions.list();
        QCOMPARE(list.first().reason, Reason::Restored);
        QCOMPARE(list[3].reason, Reason::OtherProgram);
        QCOMPARE(list.last().time, QDateTime(QDate(2024, 3, 7), QTime(9, 5, 1)));
        QCOMPARE(statusOf(list.first().path).st_mode, S_IFREG | 0600U);

        QCOMPARE(place.versions.remove(list.last()), QString());
        QCOMPARE(place.allWith(kept[0].toUtf8()), QStringList());
        QCOMPARE(place.versions.removeAll(), QString());
        QVERIFY(place.versions.list().isEmpty());
        QCOMPARE(QDir(place.paths[0]).entryList(QDir::Files).size(), others.size());
        QCOMPARE(place.allWith("the user's own copy").size(), 1);
    }

    void rescuesToTheFirstFolderThatTakesIt()
    {
        for (qsizetype blocked = 0; blocked <= 4; ++blocked) {
            Folders place;
            for (const QString &folder : place.paths.first(blocked)) {
                QDir(folder).removeRecursively();
                put(folder, "a file is in the way");
            }
            const QString path = place.versions.rescue("unsaved");
            QCOMPARE(place.allWith("unsaved"), path.isEmpty() ? QStringList() : QStringList(path));
            QCOMPARE(path.isEmpty(), blocked == 4);
            QCOMPARE(place.versions.rescued().size(), path.isEmpty() ? 0 : 1);
            if (path.isEmpty())
                continue;
            QCOMPARE(QFileInfo(path).path(), place.paths[blocked]);
            QCOMPARE(statusOf(path).st_mode, S_IFREG | 0600U);
            const bool isPrivate = blocked == 0 || blocked == 2;
            QVERIFY(!isPrivate || statusOf(place.paths[blocked]).st_mode == (S_IFDIR | 0700U));
            QCOMPARE(place.versions.read(place.versions.rescued().first()).bytes, "unsaved");
        }
    }

    void rescuesWhicheverCallFails()
    {
        bool struck = true;
        int call = 1;
        for (; struck; ++call) {
            for (const int fault : {EIO, ENOSPC, EINTR, FaultyFileCalls::half}) {
                const Folders place;
                FaultyFileCalls calls;
                EarlierVersions versions(u"plan.txt"_s, place.paths, calls);
                calls.arm(call, fault);
                const QString path = versions.rescue("unsaved");
                struck = calls.hasStruck();
                QCOMPARE(place.allWith("unsaved"), QStringList(path));
                QVERIFY2(calls.names.empty() && calls.bytes.empty(), "a power cut loses nothing");
            }
        }
        QVERIFY2(call > 8, qPrintable(QString::number(call)));
    }

    void takesNothingOfOthersInASharedFolder()
    {
        const Folders place;
        const QString name = place.paths.last() + u"/2024-03-08 09.05.0%1 [rescued] plan.txt"_s;
        put(name.arg(1), "of this user");
        put(place.folder.filePath(u"elsewhere"_s), "linked");
        QVERIFY(QFile::link(place.folder.filePath(u"elsewhere"_s), name.arg(2)));
        QVERIFY(QDir().mkdir(name.arg(3)));
        put(name.arg(4), "of another user");
        const bool isOthers = ::chown(QFile::encodeName(name.arg(4)).constData(), nobody, nobody) == 0;
        QVERIFY(isOthers || ::geteuid() != 0);
        QCOMPARE(place.versions.rescued().size(), isOthers ? 1 : 2);
        QCOMPARE(place.versions.rescued().constLast().path, name.arg(1));
        const EarlierVersion linked{name.arg(2), {}, Reason::Rescued};
        QCOMPARE(place.versions.read(linked).outcome, FileReading::Outcome::Failed);
    }

    void keepsThirtyDaysAndTheNewestOfAReason()
    {
        const QDate today(2024, 3, 31);
        Folders place;
        const auto old = [&](int days, const char *reason) {
            const QString day = today.addDays(-days).toString(Qt::ISODate);
            put(u"%1/%2 09.05.01 [%3] plan.txt"_s.arg(place.paths[0], day, QLatin1StringView(reason)),
                reason + QByteArray::number(days));
        };
        for (const int days : {0, 29, 30, 31, 400})
            old(days, "daily");
        for (const int days : {40, 41})
            old(days, "aside");
        for (const int days : {50, 51})
            old(days, "rescued");
        place.versions.prune(today);
        QByteArrayList left;
        for (const EarlierVersion &version : place.versions.list())
            left << contentOf(version.path);
        QCOMPARE(left, (QByteArrayList{"daily0", "daily29", "daily30", "aside40", "rescued50", "rescued51"}));
    }

    void looksInTheFoldersOfThisUser()
    {
        const Folders place;
        const auto folders = [&](const QByteArray &state) {
            qputenv("XDG_STATE_HOME", state);
            return EarlierVersions::standardFolders(place.privateFolder, place.paths[1]);
        };
        const QString home = QDir::homePath() + u"/.local/state/oblino"_s;
        QCOMPARE(folders(QFile::encodeName(place.folder.filePath(u"state"_s))),
                 place.paths.first(3) + QStringList(QDir::tempPath()));
        QCOMPARE(folders("relative").value(2), home);
        QCOMPARE(folders({}).value(2), home);
        QVERIFY(QDir(place.paths[1]).removeRecursively()); // the documents folder is away
        QCOMPARE(folders({}), (QStringList{place.paths[0], home, QDir::tempPath()}));
    }
};

OBLINO_TEST(tst_earlierversions, QCoreApplication)
#include "tst_earlierversions.moc"
