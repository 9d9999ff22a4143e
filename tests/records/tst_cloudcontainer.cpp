#include <support/cloudrequests.h>
#include <support/postgresserver.h>
#include <support/test.h>

#include <records/sqlcloudcontainer.h>

namespace {

const QString table = u"\"cloud_private_Note\""_s;

std::unique_ptr<SqlCloudContainer> containerAt(const StoreLocation &place)
{
    return std::make_unique<SqlCloudContainer>(place, QList{&noteType()});
}

} // namespace

/// What every cloud container promises, on each of its engines.
class tst_cloudcontainer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("isServer");
        QTest::newRow("SQLite") << false;
        QTest::newRow("PostgreSQL") << true;
    }
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin"); // which sets its clocks
        ::tzset();
        if (PostgresServer::isInstalled())
            m_server = std::make_unique<PostgresServer>();
    }
    void init()
    {
        QFETCH_GLOBAL(bool, isServer);
        if (isServer && !m_server)
            QSKIP("PostgreSQL is not installed.");
        m_place = newPlace();
        m_container = containerAt(m_place);
    }

    void keepsEveryValue()
    {
        const std::pair<QString, QVariant> values[] = {
            {u"text"_s, {}},
            {u"text"_s, u""_s}, // which is not the same
            {u"text"_s, u"it's \"so\" \\ '; DROP TABLE x; -- ? $1 :a"_s},
            {u"text"_s, u"a"_s + QChar(0) + u"b\r\n\t\U0001F600"_s},
            {u"text"_s, QString(1'000'000, u'ä')},
            {u"day"_s, QDateTime::fromMSecsSinceEpoch(-1)},
            {u"day"_s, QDateTime(QDate(2200, 1, 1), QTime(23, 59, 59, 999), Qt::UTC)},
            {u"day"_s, QDateTime::fromSecsSinceEpoch(1'698'541'200)}, // the second hour of one name
            {u"count"_s, std::numeric_limits<qint64>::min()},
            {u"count"_s, std::numeric_limits<qint64>::max()},
            {u"done"_s, false},
            {u"done"_s, true},
            {u"amount"_s, 0.1 + 0.2}, // to the last bit
            {u"amount"_s, std::numeric_limits<double>::max()},
            {u"amount"_s, -3.0},
        };
        for (const auto &[key, value] : values)
            QCOMPARE(save(*m_container, note(QString::number(m_names++), key, value)), u""_s);
        QCOMPARE(save(*m_container, note(u"invalid"_s, u"day"_s, QDateTime())), u""_s);

        QList<CloudRecord> records = std::get<0>(find(*containerAt(m_place)));
        QCOMPARE(records.takeLast().value(u"day"_s), QVariant());
        QCOMPARE(records.size(), static_cast<qsizetype>(std::size(values)));
        for (qsizetype i = 0; i < records.size(); ++i) {
            const auto &[key, value] = values[i];
            const QVariant found = records.at(i).value(key);
            QVERIFY2(found.typeId() == value.typeId() && found == value, qPrintable(QString::number(i)));
        }
    }

    void savesFindsAndDeletes()
    {
        const QString odd = u"'"_s + QChar(0);
        for (const QString &name : {u"9"_s, u"2"_s, odd, u"5"_s})
            QCOMPARE(save(*m_container, note(name, u"owner"_s, name)), u""_s);
        QCOMPARE(save(*m_container, note(u"9"_s, u"count"_s, 1)), u""_s);
        const QList<CloudRecord> records = std::get<0>(find(*m_container));
        QCOMPARE(namesOf(records), u"9 2 %1 5"_s.arg(odd)); // in the order of their creation
        QCOMPARE(records.at(0).value(u"owner"_s), QVariant());
        QCOMPARE(records.at(0).value(u"count"_s), QVariant(qint64(1)));
        QCOMPARE(namesIn(*m_container, {u"owner"_s, odd}), odd);
        QCOMPARE(namesIn(*m_container, {u"owner"_s, u"' OR 1=1 --"_s}), u""_s);

        for (const QString &name : {odd, u"never there"_s, u"9"_s})
            QCOMPARE(remove(*m_container, name), u""_s);
        QCOMPARE(save(*m_container, note(u"9"_s)), u""_s);
        QCOMPARE(namesIn(*m_container), u"2 5 9"_s);
    }

    void answersTogetherWhatItAnswersOneByOne()
    {
        std::array<QStringList, 2> answers;
        for (QStringList &all : answers) {
            const auto container = containerAt(newPlace());
            CloudDatabase &database = container->privateCloudDatabase();
            QRandomGenerator random(17);
            for (int i = 0; i < 900; ++i) {
                const QString name = QString::number(random.bounded(40));
                const QString owner = QString::number(random.bounded(10));
                // Long stretches of one kind with others between them.
                const int kind = random.bounded(4) == 0 ? random.bounded(3) : (i / 100) % 3;
                const auto failed = [&all](const CloudFailure &failure) { all += errorMessage(failure); };
                if (kind == 0)
                    database.saveRecord(note(name, u"owner"_s, owner),
                                        [failed](const auto &, const auto &failure) { failed(failure); });
                else if (kind == 1)
                    database.deleteRecord({&noteType(), name}, failed);
                else
                    database.performQuery({&noteType(), {u"owner"_s, owner}},
                                          [&all](const auto &records, const auto &failure) {
                                              all += namesOf(records) + errorMessage(failure);
                                          });
                if (&all == &answers.back())
                    (void)statusOf(*container);
            }
            (void)statusOf(*container);
        }
        QVERIFY(answers.back().join(u""_s).size() > 300); // names, so that mistakes would show
        QCOMPARE(answers.front(), answers.back());
    }

    void failsNoneButTheRequestThatCannotBeDone()
    {
        QCOMPARE(save(*m_container, note(u"zero"_s, u"text"_s, u"taken"_s)), u""_s);
        runAt(m_place, u"CREATE UNIQUE INDEX texts ON %1 (text)"_s.arg(table));
        QList<bool> answers;
        QList<bool> expected;
        for (int i = 0; i < 200; ++i) {
            const bool isBad = i == 0 || i == 70 || i == 199;
            expected += !isBad;
            m_container->privateCloudDatabase().saveRecord(
                note(u"one"_s, u"text"_s, isBad ? u"taken"_s : QString::number(i)),
                [&](const auto &, const CloudFailure &failure) { answers += !failure; });
        }
        QCOMPARE(std::get<0>(find(*m_container)).last().value(u"text"_s), QVariant(u"198"_s));
        QCOMPARE(answers, expected);
    }

    void refusesRecordsOfANewerVersion()
    {
        QCOMPARE(save(*m_container, note(u"one"_s)), u""_s);
        runAt(m_place, u"UPDATE \"cloud_record_types\" SET version = version + 1"_s);
        const auto container = containerAt(m_place);
        for (const QString &why :
             {save(*container, note(u"two"_s)), remove(*container, u"one"_s), namesIn(*container)})
            QVERIFY2(why.contains(u"another version of the program (2)"_s), qPrintable(why));
        QCOMPARE(statusOf(*container), AccountStatus::CouldNotDetermine);
        QCOMPARE(runAt(m_place, u"SELECT count(*) FROM "_s + table).toInt(), 1);
    }

private:
    StoreLocation newPlace()
    {
        QFETCH_GLOBAL(bool, isServer);
        return isServer ? m_server->newPlace()
                        : StoreLocation{.file = m_folder.filePath(u"%1/cloud.sqlite"_s.arg(m_names++))};
    }

    // In memory where that can be had, as syncing a busy disk takes long.
    QTemporaryDir m_folder{QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm/cloud-XXXXXX"_s : QString()};
    std::unique_ptr<PostgresServer> m_server;
    StoreLocation m_place;
    std::unique_ptr<SqlCloudContainer> m_container;
    int m_names = 0;
};

OBLINO_TEST(tst_cloudcontainer, QCoreApplication)

#include "tst_cloudcontainer.moc"
