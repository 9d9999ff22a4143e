#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <files/documents.h>

#include <QRegularExpression>
#include <QTest>

#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Reason = VersionReason;

namespace {

/// The folders that take a rescued text, in their order, in a place of the test's own.
struct Folders : Place
{
    QStringList paths = {privateFolder + u"/recovery"_s, folder.filePath(u"docs"_s),
                         folder.filePath(u"state/oblino"_s), folder.filePath(u"tmp"_s)};
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
    void knowsAVersionByItsName_data()
    {
        const auto at = [](const char *time) {
            return QDateTime::fromString(QLatin1StringView(time), Qt::ISODate);
        };
        const Table<QString, std::optional<Reason>, QDateTime, int> row;
        row("kept", u"2024-03-07 09.05.01 [daily] plan.txt"_s, Reason::Daily, at("2024-03-07T09:05:01"), 1);
        row("the second of a second", u"2024-03-07 09.05.01 (2) [rescued] plan.txt"_s, Reason::Rescued,
            at("2024-03-07T09:05:01"), 2);
        row("the record of a save", u"2024-03-07 09.05.01 [damaged] plan.txt.journal"_s, Reason::Damaged,
            at("2024-03-07T09:05:01"), 1);
        row("of a later release", u"2024-03-07 09.05.01 [other] plan.txt"_s, Reason::OtherProgram,
            at("2024-03-07T09:05:01"), 1);
        row("no such day", u"2024-13-07 09.05.01 [daily] plan.txt"_s, {}, {}, 1);
        row("of another file", u"2024-03-07 09.05.01 [daily] my plan.txt"_s, {}, {}, 1);
        row("of a longer name", u"2024-03-07 09.05.01 [daily] plan.txt~"_s, {}, {}, 1);
        row("the file itself", u"plan.txt"_s, {}, {}, 1);
    }
    void knowsAVersionByItsName()
    {
        const auto [fileName, reason, time, number] =
            Table<QString, std::optional<Reason>, QDateTime, int>::cells();
        const std::optional<VersionName> name = VersionName::parse(fileName, u"plan.txt"_s);
        QCOMPARE(name.has_value(), reason.has_value());
        if (name) {
            QCOMPARE(name->reason, *reason);
            QCOMPARE(name->time, time);
            QCOMPARE(name->number, number);
        }
    }

    void listsWhatWasKeptNewestFirst()
    {
        Folders place;
        put(place.paths[0] + u"/2024-03-07 09.05.01 (2) [daily] plan.txt"_s, "second");
        put(place.paths[0] + u"/2024-03-07 09.05.01 [daily] plan.txt"_s, "first");
        put(place.paths[0] + u"/2024-03-08 09.05.01 [daily] other.txt"_s, "of another file");
        put(place.paths[1] + u"/2024-03-08 09.05.01 [daily] plan.txt"_s, "the user's own copy");
        put(place.paths[1] + u"/2024-03-08 09.05.01 [rescued] plan.txt"_s, "rescued");
        QCOMPARE(place.versions.keep("kept now", Reason::Restored), QString());
        QByteArrayList contents;
        for (const EarlierVersion &version : place.versions.list())
            contents << place.versions.read(version).bytes;
        QCOMPARE(contents, (QByteArrayList{"kept now", "rescued", "second", "first"}));
        QCOMPARE(place.versions.list().first().reason, Reason::Restored);
        QCOMPARE(statusOf(place.versions.list().first().path).st_mode, S_IFREG | 0600U);

        QCOMPARE(place.versions.remove(place.versions.list().constLast()), QString());
        QCOMPARE(place.allWith("first"), QStringList());
        QCOMPARE(place.versions.removeAll(), QString());
        QVERIFY(place.versions.list().isEmpty());
        QCOMPARE((place.allWith("rescued") + place.allWith("second") + place.allWith("kept now")),
                 QStringList());
        QCOMPARE(place.allWith("the user's own copy").size(), 1);
        QCOMPARE(place.allWith("of another file").size(), 1);
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

    void erasingDestroysWhatWasRescuedToo()
    {
        const Folders place;
        qputenv("XDG_STATE_HOME", QFile::encodeName(place.folder.filePath(u"state"_s)));
        qputenv("TMPDIR", QFile::encodeName(place.paths.last()));
        for (const bool hasFolder : {true, false}) {
            put(place.path, "secret");
            for (const QString &folder : place.paths)
                put(folder + u"/2024-03-08 09.05.01 [rescued] plan.txt"_s, "secret");
            Documents documents(hasFolder ? std::optional(place.paths[1]) : std::nullopt,
                                place.privateFolder);
            QCOMPARE(documents.versions(u"plan.txt"_s).rescued().size(), hasFolder ? 4 : 3);
            const QString error = documents.erase(u"plan.txt"_s);
            QCOMPARE(error, hasFolder ? QString() : u"There is no documents folder."_s);
            QCOMPARE(place.allWith("secret").size(), hasFolder ? 0 : 2); // in the folder that nobody names
        }
        qunsetenv("TMPDIR");
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
