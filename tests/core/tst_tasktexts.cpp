#include "store.h"

#include <core/celltext.h>
#include <core/days.h>
#include <core/sharetext.h>

using namespace oblino;

namespace {

const task example = {.key = u"K-1"_s,
                      .date = QDateTime(QDate(2024, 3, 7), QTime(23, 59)),
                      .name = u"Name"_s,
                      .desc = u"a & b\nc %1\n"_s,
                      .client = u"%2 é🎉"_s,
                      .teamMember = u"Ann"_s,
                      .due = QDate(2024, 3, 9).startOfDay(),
                      .statusName = u"Status"_s,
                      .priorityName = u"Priority"_s,
                      .startHour = 9,
                      .startMin = 5,
                      .endHour = 100,
                      .endMin = 0};

const QLocale german(QLocale::German, QLocale::Germany);

} // namespace

class tst_tasktexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTimesOnATwelveHourClock()
    {
        QCOMPARE(twelveHourTime(0, 5), u"12:05AM"_s);
        QCOMPARE(twelveHourTime(11, 59), u"11:59AM"_s);
        QCOMPARE(twelveHourTime(12, 0), u"12:00PM"_s);
        QCOMPARE(twelveHourTime(13, 7), u"01:07PM"_s);
    }

    void showsATaskInTheCellsOfItsColumns()
    {
        QString cells;
        for (const char *column :
             {"DateCellID", "StartTimeID", "EndTimeID", "NameCellID", "ClientCellID", "TeamMemberCellID",
              "DescCellID", "StatusCellID", "PriorityCellID", "DueCellID", "KeyCellID", "namecellid"})
            cells += cellText(example, QString::fromLatin1(column), german) + u'|';
        QCOMPARE(cells, u"07.03.24|09:05|100:00|Name|%2 é🎉|Ann|a & b...|Status|Priority|09.03.24|K-1||"_s);
    }

    void laysOutATaskToBeShared()
    {
        const QString fields =
            u"\n\nSchedule: Name\nStart Date: 07.03.24\nStart Time: 09:05\nEnd Time: 100:00\n"
            "Due Date: 09.03.24\nDescription: a & b\nc %1\n\n\nClient: %2 é🎉\n"
            "Team Member: Ann\n\nTask Key: K-1\nMessage Key: M-1\n\n"_s;
        const QString end =
            u"\n\nSent with Oblino. Download from the App Store for Mac:\n\n"_s + QStringLiteral(STORE);
        QCOMPARE(shareText(example, {}, {}, u"M-1"_s, german), fields + end);
        QCOMPARE(shareText(example, u"Plan"_s, u"Bye\n%3"_s, u"M-1"_s, german),
                 u"Plan"_s + fields + u"Bye\n%3"_s + end);
    }
};

OBLINO_TEST(tst_tasktexts, QCoreApplication)

#include "tst_tasktexts.moc"
