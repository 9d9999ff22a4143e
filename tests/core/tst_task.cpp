#include "store.h"

#include <core/tasklistwriter.h>

using namespace oblino;

class tst_task : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithItsDefaults()
    {
        const QDateTime before = QDateTime::currentDateTime();
        task t;
        QVERIFY(t.date >= before && t.date <= t.due && t.due <= QDateTime::currentDateTime());
        t.date = t.due = QDate(2024, 3, 7).startOfDay();
        QCOMPARE(
            taskListText({t}, false),
            "3/7/24|Unnamed|UnDescribed|1.0|1.0|1.0|1.0|3/7/24|0|0|NoStatus|NoPriority|NoKey|false|8|0|17|0|"
            "UnAssigned|UnAssigned^"_ba);
    }

    void takesTheTimesOfTheTaskThatWasLastAdded()
    {
        add(tskMgr(), {.startHour = 9, .startMin = 30, .endHour = 11, .endMin = 15});
        const task later;
        const QList<qint64> times = {later.startHour, later.startMin, later.endHour, later.endMin};
        QCOMPARE(times, (QList<qint64>{9, 30, 11, 15}));
    }
};

OBLINO_TEST(tst_task, QCoreApplication)

#include "tst_task.moc"
