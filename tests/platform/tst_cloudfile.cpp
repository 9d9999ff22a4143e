#include <support/cloudengine.h>
#include <support/cloudrequests.h>
#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <platform/cloud/sqlcloudcontainer.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <atomic>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

/// Cloud records in a file of this machine.
class tst_cloudfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheFileToItsOwner();
    void leavesAloneWhatIsNoFileOfRecords_data();
    void leavesAloneWhatIsNoFileOfRecords();
    void readsWhatCannotBeWritten();
    void waitsForALockWhereItReadsFirst();
    void givesUpOnALockedFileOnceForAll();
    void keepsWhatWasSavedWhenKilled();

private:
    SqliteEngine m_engine;
};

void tst_cloudfile::keepsTheFileToItsOwner()
{
    const mode_t before = ::umask(0);
    const RecordPlace place = m_engine.newPlace();
    const QString why =
        wordsOf(save(*std::make_unique<SqlCloudContainer>(place, QList{&noteType()}), note(u"one"_s)));
    ::umask(before);
    QCOMPARE(why, u""_s);
    QCOMPARE(statusOf(place.file).st_mode & 0777U, 0600U);
    QCOMPARE(statusOf(QFileInfo(place.file).path()).st_mode & 0777U, 0700U);
    QCOMPARE(QDir(QFileInfo(place.file).path()).entryList(QDir::Files), QStringList(u"cloud.sqlite"_s));
}

void tst_cloudfile::leavesAloneWhatIsNoFileOfRecords_data()
{
    const Table<QByteArray, QString> row;
    row("text", QByteArray("a list of things\n").repeated(300), u"not a database"_s);
    row("a database that was damaged", QByteArray("SQLite format 3\0", 16) + QByteArray(4080, 'x'),
        u"not a database"_s);
    row("a folder", {}, u"it is not a regular file"_s);
}

void tst_cloudfile::leavesAloneWhatIsNoFileOfRecords()
{
    const auto [content, words] = Table<QByteArray, QString>::cells();
    const RecordPlace place = m_engine.newPlace();
    if (content.isEmpty())
        QVERIFY(QDir().mkpath(place.file));
    else
        put(place.file, content);
    SqlCloudContainer container(place, {&noteType()});
    QCOMPARE(statusOf(container), AccountStatus::CouldNotDetermine);
    for (const QString &why : {wordsOf(save(container, note(u"one"_s))), wordsOf(remove(container, u"one"_s)),
                               namesIn(container).join(u""_s)})
        QVERIFY2(why.contains(words), qPrintable(why));
    QCOMPARE(contentOf(place.file), content);
    QCOMPARE(QDir(QFileInfo(place.file).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
}

void tst_cloudfile::readsWhatCannotBeWritten()
{
    const RecordPlace place = m_engine.newPlace();
    {
        SqlCloudContainer container(place, {&noteType()});
        QCOMPARE(wordsOf(save(container, note(u"one"_s))), u""_s);
    }
    const QByteArray before = contentOf(place.file);
    QCOMPARE(::chmod(QFile::encodeName(place.file).constData(), 0444), 0);
    for (QDir folder(QFileInfo(place.file).path()); folder.path().contains(u"cloud-"_s); folder.cdUp())
        QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0755), 0);
    QProcess victim;
    startUnprivileged(victim, QStringLiteral(CLOUD_VICTIM), {place.file, u"2"_s});
    QVERIFY(victim.waitForFinished());
    QCOMPARE(victim.readAll(),
             "attempt to write a readonly database\nattempt to write a readonly database\n");
    QCOMPARE(contentOf(place.file), before);
}

void tst_cloudfile::waitsForALockWhereItReadsFirst()
{
    const RecordPlace place = m_engine.newPlace();
    SqlCloudContainer container(place, {&noteType()});
    QCOMPARE(statusOf(container), AccountStatus::Available);
    SecondConnection other = m_engine.connectTo(place);
    std::atomic<int> answers = 0;
    std::atomic<int> failures = 0;
    const auto answer = [&](const auto &, const CloudFailure &failure) {
        failures += failure ? 1 : 0;
        ++answers;
    };
    {
        const Pause pause(container);
        other.run(u"BEGIN IMMEDIATE"_s);
        container.privateCloudDatabase().performQuery({&noteType(), RecordPredicate::all()}, answer);
        container.privateCloudDatabase().saveRecord(note(u"one"_s), answer);
    }
    QVERIFY(!QTest::qWaitFor([&] { return answers > 0; }, 200));
    other.run(u"COMMIT"_s);
    QTRY_COMPARE(answers, 2);
    QCOMPARE(failures, 0);
}

void tst_cloudfile::givesUpOnALockedFileOnceForAll()
{
    const RecordPlace place = m_engine.newPlace();
    SqlCloudContainer container(place, {&noteType()});
    QCOMPARE(statusOf(container), AccountStatus::Available);
    SecondConnection other = m_engine.connectTo(place);
    std::atomic<int> refused = 0;
    {
        const Pause pause(container);
        other.run(u"BEGIN EXCLUSIVE"_s);
        for (int i = 0; i < 50; ++i)
            container.privateCloudDatabase().saveRecord(
                note(QString::number(i)), [&](const auto &, const CloudFailure &failure) {
                    refused += failure && failure->code == CloudError::Code::Unreachable;
                });
    }
    QTRY_COMPARE_WITH_TIMEOUT(refused, 50, 9000);
    other.run(u"ROLLBACK"_s);
    QCOMPARE(wordsOf(save(container, note(u"one"_s))), u""_s);
}

void tst_cloudfile::keepsWhatWasSavedWhenKilled()
{
    for (int round = 0; round < 4; ++round) {
        const RecordPlace place = m_engine.newPlace();
        QProcess victim;
        victim.start(QStringLiteral(CLOUD_VICTIM), {place.file, u"30000"_s});
        // Each time a while later.
        for (int line = 0; line < 1 + 3000 * round; ++line)
            QVERIFY(victim.canReadLine() || victim.waitForReadyRead());
        victim.kill();
        QVERIFY(victim.waitForFinished());
        QCOMPARE(victim.exitStatus(), QProcess::CrashExit);
        const QStringList saved = QString::fromUtf8(victim.readAll()).split(u'\n');
        SqlCloudContainer container(place, {&noteType()});
        const QStringList found = namesIn(container);
        QVERIFY(saved.size() > 1);
        QCOMPARE(found.first(saved.size() - 1), saved.first(saved.size() - 1));
        QCOMPARE(m_engine.run(place, u"PRAGMA integrity_check"_s), QList<QVariantList>{{u"ok"_s}});
    }
}

OBLINO_TEST(tst_cloudfile, QCoreApplication)

#include "tst_cloudfile.moc"
