#include <support/table.h>
#include <support/testmain.h>
#include <support/timezone.h>

#include <base/daywatch.h>

#include <QSignalSpy>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Nights = Table<QDateTime, QDateTime, bool>;

class tst_daywatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfAnotherDay_data()
    {
        const auto at = [](int day, int hour, int minute, int second, int ms) {
            return QDateTime(QDate(2024, 3, day), QTime(hour, minute, second, ms));
        };
        const TimeZone zone("STD5DST,M3.2.0/0,M11.1.0/1");
        Nights row; // the moment, the next one, whether the watch wakes by itself
        row("midnight", at(8, 23, 59, 59, 950), at(9, 0, 0, 0, 1), true);
        row("a midnight that does not exist", at(9, 23, 59, 59, 950), at(10, 1, 0, 0, 1), true);
        row("woken days later", at(8, 12, 0, 0, 0), at(12, 8, 0, 0, 0), false);
        row("the clock was put back", at(8, 0, 30, 0, 0), at(7, 23, 30, 0, 0), false);
    }
    void tellsOfAnotherDay()
    {
        const TimeZone zone("STD5DST,M3.2.0/0,M11.1.0/1");
        const auto [before, after, wakes] = Nights::cells();
        QDateTime moment = before;
        DayWatch watch([&moment] { return moment; });
        const QSignalSpy told(&watch, &DayWatch::dayChanged);
        watch.look();
        QCOMPARE(told.size(), 0);
        moment = after;
        if (!wakes)
            watch.look();
        QTRY_COMPARE_WITH_TIMEOUT(told.size(), 1, 2'000);
        QCOMPARE(told.first().first().toDate(), after.date());
    }
};

OBLINO_TEST(tst_daywatch, QCoreApplication)

#include "tst_daywatch.moc"
