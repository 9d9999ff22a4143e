#include <support/place.h>
#include <support/test.h>
#include <support/unprivileged.h>

#include <files/earlierversions.h>

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
    [[nodiscard]] QStringList filesWith(const QByteArray &text) const
    {
        return oblino::filesWith(folder.path(), text);
    }
};

QByteArrayList contentsOf(const QList<EarlierVersion> &versions)
{
    QByteArrayList contents;
    for (const EarlierVersion &version : versions)
        contents << EarlierVersions({}, {}).read(version).bytes;
    return contents;
}

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
        const QList<EarlierVersion> list = place.versions.list();
        QCOMPARE(contentsOf(list), (QByteArrayList{"kept now", "rescued", kept[3].toUtf8(), kept[2].toUtf8(),
                                                   kept[1].toUtf8(), kept[0].toUtf8()}));
        QVERIFY(list[0].reason == Reason::Restored && list[3].reason == Reason::OtherProgram);
        QCOMPARE(list.last().time, QDateTime(QDate(2024, 3, 7), QTime(9, 5, 1)));

        QCOMPARE(place.versions.removeAll(), QString());
        QVERIFY(place.versions.list().isEmpty());
        QCOMPARE(QDir(place.paths[0]).entryList(QDir::Files).size(), others.size());
        QCOMPARE(place.filesWith("the user's own copy").size(), 1);
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
            QCOMPARE(place.filesWith("unsaved"), path.isEmpty() ? QStringList() : QStringList(path));
            QCOMPARE(contentsOf(place.versions.rescued()).join(), blocked == 4 ? "" : "unsaved");
            if (blocked == 4)
                continue;
            QCOMPARE(QFileInfo(path).path(), place.paths[blocked]);
            QCOMPARE(statusOf(path).st_mode, S_IFREG | 0600U);
            const bool isPrivate = blocked == 0 || blocked == 2;
            QVERIFY(!isPrivate || statusOf(place.paths[blocked]).st_mode == (S_IFDIR | 0700U));
        }
    }

    void keepsThirtyDaysAndTheNewestOfAReason()
    {
        const QDate today(2024, 3, 31);
        Folders place;
        for (const QByteArray old : {"daily 0", "daily 29", "daily 30", "daily 31", "daily 400", "aside 40",
                                     "aside 41", "rescued 50", "rescued 51"}) {
            const QByteArrayList words = old.split(' ');
            const QString day = today.addDays(-words[1].toInt()).toString(Qt::ISODate);
            put(u"%1/%2 09.05.01 [%3] plan.txt"_s.arg(place.paths[0], day, QLatin1StringView(words[0])), old);
        }
        place.versions.prune(today);
        QCOMPARE(contentsOf(place.versions.list()).join(", "),
                 "daily 0, daily 29, daily 30, aside 40, rescued 50, rescued 51");
    }
};

OBLINO_TEST(tst_earlierversions, QCoreApplication)
#include "tst_earlierversions.moc"
