#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>

#include <files/filewatch.h>

#include <QSignalSpy>

#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Deed = std::function<void(const Place &)>;

class tst_filewatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfWhateverOtherProgramsDo_data()
    {
        const Deed write = [](const Place &place) { put(place.path, "other\n"); };
        const Deed replace = [](const Place &place) {
            put(place.path + u".new"_s, "new\n");
            QCOMPARE(::rename((place.encodedPath() + ".new").constData(), place.encodedPath().constData()),
                     0);
        };
        const Deed remove = [](const Place &place) { QVERIFY(QFile::remove(place.path)); };
        const auto moveFolder = [](const Place &place) {
            QVERIFY(QFile::rename(place.folder.filePath(u"docs"_s), place.folder.filePath(u"away"_s)));
        };
        const Deed bringFolder = [](const Place &place) {
            QVERIFY(QDir().mkpath(place.folder.filePath(u"docs"_s)));
        };
        const Deed moveTarget = [](const Place &place) {
            put(place.folder.filePath(u"target"_s), "one\n");
            QVERIFY(QFile::remove(place.path));
            QVERIFY(QFile::link(place.folder.filePath(u"target"_s), place.path));
        };
        const Deed writeTarget = [](const Place &place) { put(place.folder.filePath(u"target"_s), "two\n"); };
        const Table<QList<Deed>> row;
        row("written in place, twice", {write, write});
        row("replaced, then written", {replace, write});
        row("removed, then there again", {remove, write});
        row("its folder goes, comes and gets the file", {moveFolder, bringFolder, write});
        row("a link in its place, then what that leads to", {moveTarget, writeTarget});
    }

    void tellsOfWhateverOtherProgramsDo()
    {
        const auto [deeds] = Table<QList<Deed>>::cells();
        const Place place("one\n");
        FileWatch watch(place.path, 20ms);
        QSignalSpy told(&watch, &FileWatch::changed);
        for (const Deed &deed : deeds) {
            told.clear();
            deed(place);
            QTRY_VERIFY(!told.isEmpty());
        }
    }
};

OBLINO_TEST(tst_filewatch, QCoreApplication)
#include "tst_filewatch.moc"
