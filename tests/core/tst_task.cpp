#include <support/testmain.h>

#include <core/task.h>
#include <core/taskmanager.h>

using namespace oblino;

class tst_task : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithItsDefaults()
    {
        const task t;
        QCOMPARE(t.key, QStringLiteral("NoKey"));
        QCOMPARE(t.name, QStringLiteral("Unnamed"));
        QCOMPARE(t.desc, QStringLiteral("UnDescribed"));
        QCOMPARE(t.client, QStringLiteral("UnAssigned"));
        QCOMPARE(t.teamMember, QStringLiteral("UnAssigned"));
        QVERIFY(t.color == Color(1, 1, 1, 1));
        QCOMPARE(t.statusName, QStringLiteral("NoStatus"));
        QCOMPARE(t.priorityName, QStringLiteral("NoPriority"));
        QCOMPARE(t.startHour, 8);
        QCOMPARE(t.endHour, 17);
        QVERIFY(!t.hidden);
    }
};

OBLINO_TEST(tst_task, QCoreApplication)

#include "tst_task.moc"
