
#include <support/test.h>
#include <ui/tabletexts.h>

using Empties = Table<EmptyTable, QString>;
using Additions = Table<int, bool, int, const char *, QString>;

class tst_tabletexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
