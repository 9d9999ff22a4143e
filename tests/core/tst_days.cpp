#include "store.h"

#include <core/celltext.h>
#include <core/days.h>

using namespace oblino;

using Times = Table<int, int, QString>;
using Cuts = Table<QString, QString>;

class tst_days : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTimesOnATwelveHourClock_data()
    {
        Times row;
        row("midnight", 0, 5, u"12:05AM"_s);
        row("one-digit hour", 9, 30, u"09:30AM"_s);
        row("end of the morning", 11, 59, u"11:59AM"_s);
        row("noon", 12, 0, u"12:00PM"_s);
        row("afternoon", 13, 7, u"01:07PM"_s);
        row("late evening", 23, 45, u"11:45PM"_s);
    }

    void writesTimesOnATwelveHourClock()
    {
        const auto [hour, minute, text] = Times::cells();
        QCOMPARE(twelveHourTime(hour, minute), text);
    }

    void ordersDays()
    {
        QCOMPARE(compareDays(QDate(2023, 12, 31), QDate(2024, 1, 1)), DayOrder::Ascending);
        QCOMPARE(compareDays(QDate(2024, 1, 1), QDate(2024, 1, 1)), DayOrder::Same);
        QCOMPARE(compareDays(QDate(2024, 2, 1), QDate(2024, 1, 31)), DayOrder::Descending);
    }

    void cutsATextAtItsFirstLineFeed_data()
    {
        Cuts row;
        row("one line", u"Two coats"_s, u"Two coats"_s);
        row("three lines", u"One\nTwo\nThree"_s, u"One..."_s);
        row("line feed first", u"\nTwo"_s, u"..."_s);
        row("line feed last", u"One\n"_s, u"One..."_s);
        row("other line ends", u"One\rTwo\u2028Three"_s, u"One\rTwo\u2028Three"_s);
    }

    void cutsATextAtItsFirstLineFeed()
    {
        const auto [text, cut] = Cuts::cells();
        QCOMPARE(textUntilLineFeed(text), cut);
    }

    void showsATaskInTheCellsOfItsColumns()
    {
        const QDateTime lateOnTheDay(QDate(2024, 3, 7), QTime(23, 59)), due(QDate(2024, 3, 9), QTime(0, 0));
        const task t = {
            u"Key"_s, lateOnTheDay, u"Name"_s,     u"Desc\nmore"_s, u"Client"_s, u"Member"_s, {}, due, 3,
            4,        u"Status"_s,  u"Priority"_s, false,           9,           5,           17, 0};
        QString cells;
        for (const char *column :
             {"DateCellID", "StartTimeID", "EndTimeID", "NameCellID", "ClientCellID", "TeamMemberCellID",
              "DescCellID", "StatusCellID", "PriorityCellID", "DueCellID", "KeyCellID", "namecellid"})
            cells +=
                cellText(t, QString::fromLatin1(column), QLocale(QLocale::German, QLocale::Germany)) + u'|';
        QCOMPARE(cells, u"07.03.24|09:05|17:00|Name|Client|Member|Desc...|Status|Priority|09.03.24|Key||"_s);
    }
};

OBLINO_TEST(tst_days, QCoreApplication)

#include "tst_days.moc"
