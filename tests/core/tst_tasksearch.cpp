#include "store.h"

#include <core/tasksearch.h>

using namespace oblino;

using Searches = Table<QString, QString, bool>;

class tst_tasksearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheTermInAText_data()
    {
        Searches row;
        row("upper in lower", u"paint fence"_s, u"FENCE"_s, true);
        row("first and last letter", u"AZ"_s, u"az"_s, true);
        row("beside the letters", u"@["_s, u"`{"_s, false);
        row("across a line feed", u"one\nTwo"_s, u"E\nt"_s, true);
        row("after NUL", u"a\0Needle"_s, u"\0needle"_s, true);
        row("Ø", u"SØREN"_s, u"søren"_s, true);
        row("Σ", u"ΟΔΟΣ"_s, u"δοσ"_s, true);
        row("ẞ is ß", u"STRAẞE"_s, u"straße"_s, true);
        row("ẞ is not ss", u"STRAẞE"_s, u"strasse"_s, false);
        row("İ finds itself", u"İzmir"_s, u"İZ"_s, true);
        row("İ is i with a dot", u"İzmir"_s, u"i"_s, true);
        row("i is not İ", u"izmir"_s, u"İ"_s, false);
        row("I is not ı", u"ILGIN"_s, u"ılgın"_s, false);
        row("upper case outside the basic plane", u"\U00010400"_s, u"\U00010428"_s, true);
        row("emoji", u"Party 🎉!"_s, u"🎉"_s, true);
        row("emoji with the same first half", u"Party 🎉!"_s, u"🎊"_s, false);
        row("regular expression", u"abc"_s, u".*"_s, false);
        row("its characters", u"a.*[b\\"_s, u".*[B\\"_s, true);
        row("10,000 characters", QString(10'000, u'X') + u'y', QString(9'999, u'x') + u'Y', true);
        row("10,000 characters beyond ASCII", QString(10'000, u'Ä') + u'y', QString(9'999, u'ä') + u'Y',
            true);
    }

    void findsTheTermInAText()
    {
        const auto [text, term, found] = Searches::cells();
        QCOMPARE(!tasksMatching({{.key = {}, .name = text, .desc = {}, .client = {}, .teamMember = {}}}, term)
                      .isEmpty(),
                 found);
    }

    void looksInFiveFieldsAndKeepsTheOrder()
    {
        const QString needle = u"Needle"_s;
        const QList<task> tasks = {{.teamMember = needle, .status = 1},   {.status = 2, .statusName = needle},
                                   {.client = needle, .status = 3},       {.desc = needle, .status = 4},
                                   {.status = 5, .priorityName = needle}, {.key = needle, .status = 6},
                                   {.name = needle, .status = 7}};
        QString found;
        for (const task &t : tasksMatching(tasks, u"needle"_s))
            found += QString::number(t.status);
        QCOMPARE(found, u"13467"_s);
    }
};

OBLINO_TEST(tst_tasksearch, QCoreApplication)

#include "tst_tasksearch.moc"
