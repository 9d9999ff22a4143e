#include <support/place.h>
#include <support/test.h>

#include <files/filewatch.h>

class tst_filewatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfWhateverOtherProgramsDo()
    {
        const Place place("one\n");
        const QString docs = place.folder.filePath(u"docs"_s);
        const QString target = place.folder.filePath(u"target"_s);
        const auto write = [&] { put(place.path, "other\n"); };
        const auto replace = [&] {
            put(docs + u"/new"_s, "new\n");
            QCOMPARE(::rename(QFile::encodeName(docs + u"/new"_s), place.encodedPath()), 0);
        };
        const auto remove = [&] { QVERIFY(QFile::remove(place.path)); };
        const auto moveFolder = [&] { QVERIFY(QFile::rename(docs, docs + u".away"_s)); };
        const auto bringFolder = [&] { QVERIFY(QDir().mkpath(docs)); };
        const auto link = [&] {
            put(target, "one\n");
            QVERIFY(QFile::remove(place.path) && QFile::link(target, place.path));
        };
        const auto writeTarget = [&] { put(target, "two\n"); };
        FileWatch watch(place.path, 20ms);
        QSignalSpy told(&watch, &FileWatch::changed);
        const std::function<void()> deeds[] = {write,      write,       replace, write, remove,     write,
                                               moveFolder, bringFolder, write,   link,  writeTarget};
        for (const auto &deed : deeds) {
            told.clear();
            deed();
            QTRY_VERIFY(!told.isEmpty());
        }
    }
};

OBLINO_TEST(tst_filewatch, QCoreApplication)
#include "tst_filewatch.moc"
