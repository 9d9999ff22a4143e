
#include <support/test.h>
#include <ui/tabletexts.h>

using Empties = Table<EmptyTable, QString>;
using Additions = Table<int, bool, int, const char *, QString>;

class tst_tabletexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhyATableIsEmpty_data()
    {
        const Empties row;
        row("no task at all", {u"Open"_s, u"fence"_s, 0, 0},
            u"No tasks yet|Add the first one with Task ▸ New Task… (Ctrl+N)."_s);
        row("a view", {u"Closed"_s, {}, 1200, 1200},
            u"No tasks in the view Closed|Your 1,200 tasks are in other views; Global-All (Ctrl+7) shows them."_s);
        row("a view, for one task", {u"Open"_s, {}, 1, 1},
            u"No tasks in the view Open|Your task is in another view; Global-All (Ctrl+7) shows it."_s);
        row("a search", {u"Open"_s, u"%1"_s, 3, 0},
            u"No task matches “%1”|Press Esc in the search field to end the search."_s);
        row("a search in a view", {u"Due Today"_s, u"fence"_s, 3, 1},
            u"No task in the view Due Today matches “fence”|1 task in another view does; Global-All (Ctrl+7) "
            "shows it."_s);
        row("with several elsewhere", {u"Closed"_s, u"%1"_s, 9, 2},
            u"No task in the view Closed matches “%1”|2 tasks in other views do; Global-All (Ctrl+7) shows "
            "them."_s);
    }
    void tellsWhyATableIsEmpty()
    {
        const auto [table, expected] = Empties::cells();
        const EmptyText text = emptyText(table);
        QCOMPARE(text.title + u'|' + text.advice, expected);
    }

    void tellsWhereAnAddedTaskIs_data()
    {
        Additions row; // the status, whether hidden, the view that is shown, the search
        row("in sight", 0, false, 0, "", u"Added “fence”."_s);
        row("open among the closed", 0, false, 2, "", u"Added “fence” to Open; this view shows Closed."_s);
        row("closed among the open", 1, false, 1, "", u"Added “fence” to Closed; this view shows Open."_s);
        row("another status", 2, false, 9, "", u"Added “fence” to All; this view shows Due Today."_s);
        row("hidden", 0, true, 0, "", u"Added “fence” to Hidden Open; this view shows All."_s);
        row("in a search that finds it", 0, false, 1, "FEN", u"Added “fence”."_s);
        row("in another search", 0, false, 1, "x", u"Added “fence” to Open; it does not match the search."_s);
    }
    void tellsWhereAnAddedTaskIs()
    {
        const auto [status, hidden, view, term, expected] = Additions::cells();
        const QDateTime due(QDate(2024, 3, 7), QTime(0, 0));
        const task t = {
            .key = {}, .name = u"fence"_s, .desc = {}, .due = due, .status = status, .hidden = hidden};
        QCOMPARE(addedText({t}, view, QLatin1String(term), QDate(2024, 3, 8)), expected);
        QCOMPARE(addedText({t, t}, view, {}, QDate(2024, 3, 8)), u"Added 2 tasks."_s);
    }
};

OBLINO_TEST(tst_tabletexts, QCoreApplication)

#include "tst_tabletexts.moc"
