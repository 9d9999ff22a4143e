
#include <base/daywatch.h>
#include <support/test.h>

class tst_daywatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfAnotherDay()
    {
        const TimeZone zone("STD5DST,M3.2.0/0,M11.1.0/1"); // without a midnight on 10 March 2024
        const auto at = [](int day, int hour, int minute = 0, int second = 0, int ms = 0) {
            return QDateTime(QDate(2024, 3, day), QTime(hour, minute, second, ms));
        };
        for (const auto &[before, after] : {std::pair(at(8, 23, 59, 59, 950), at(9, 0, 0, 0, 1)),
                                            {at(9, 23, 59, 59, 950), at(10, 1, 0, 0, 1)},
                                            {at(8, 12), at(12, 8)},
                                            {at(8, 0, 30), at(7, 23, 30)}}) { // days later, clock put back
            QDateTime moment = before;
            DayWatch watch([&moment] { return moment; });
            const QSignalSpy told(&watch, &DayWatch::dayChanged);
            watch.look();
            QCOMPARE(told.size(), 0);
            moment = after;
            if (before.time().hour() != 23) // there it wakes by itself
                watch.look();
            QTRY_COMPARE_WITH_TIMEOUT(told.size(), 1, 2'000);
            QCOMPARE(told.first().first().toDate(), after.date());
        }
    }
};

OBLINO_TEST(tst_daywatch, QCoreApplication)

#include "tst_daywatch.moc"
