#include "tasksupport.h"

#include <core/listdifference.h>
#include <core/tasklistreader.h>

using namespace oblino;

using Lists = Table<QByteArrayList, QByteArrayList, QString>;
using Texts = Table<QByteArray, QString>;

namespace {

const QByteArray defaultRow =
    "3/7/24|Paint fence|Two coats|1.0|0.5|0.1|1.0|3/9/24|0|2|Open|High|KEY|false|9|30|17|0|Harbor Cafe|Dana^";

// A row with the key A from "A", and with another name from "A Mend".
QByteArray row(const QByteArray &words)
{
    const qsizetype blank = words.indexOf(' ');
    QByteArray text = defaultRow;
    text.replace("KEY", blank < 0 ? words : words.first(blank));
    return blank < 0 ? text : text.replace("Paint fence", words.sliced(blank + 1));
}

QList<task> listOf(const QByteArrayList &rows, bool dark = false)
{
    QByteArray text;
    for (const QByteArray &words : rows)
        text += row(words);
    return tasksInText(text, {}, dark);
}

} // namespace

class tst_listdifference : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsWhatTodayHasMoreFewerAndDifferent_data()
    {
        const Lists data; // the version, today's list
        data("both empty", {}, {}, u"same"_s);
        data("equal", {"A", "B"}, {"A", "B"}, u"same"_s);
        data("only moved", {"A", "B"}, {"B", "A"}, u"same"_s);
        data("all of each", {"A", "B", "C", "D"}, {"B Mend", "C Mow", "D", "E", "F", "G"}, u"+3 −1 ≠2"_s);
        data("added alone", {}, {"A"}, u"+1"_s);
        data("removed alone", {"A"}, {}, u"−1"_s);
        data("repeated keys pair in order", {"A x", "A y", "A z"}, {"A x", "A Y", "A z"}, u"≠1"_s);
        data("one of a repeated key less", {"A", "A"}, {"A"}, u"−1"_s);
        data("one of a repeated key more", {"A"}, {"A", "A", "A"}, u"+2"_s);
        data("keys differ by case", {"A"}, {"a"}, u"+1 −1"_s);
    }
    void countsWhatTodayHasMoreFewerAndDifferent()
    {
        const auto [version, today, expected] = Lists::cells();
        const ComparedList earlier(listOf(version));
        QCOMPARE(differenceText(ComparedList(listOf(today)).since(earlier)), expected);
        QCOMPARE(differenceText(ComparedList(listOf(today, true), true).since(earlier)), expected);
    }

    void comparesWhatTheFileWouldHold()
    {
        const ComparedList earlier(listOf({"A a¦b"}));
        QList<task> today = listOf({"A"});
        today.first().name = u"a|b"_s; // as the cloud may bring it
        today.first().date = today.first().date.addSecs(3600);
        QCOMPARE(ComparedList(today).since(earlier), ListDifference());
        today.first().color = Color(1, 0.5, 0.2, 1);
        QCOMPARE(differenceWords(ComparedList(today).since(earlier)), u"today: 1 task changed"_s);
    }

    void readsTheTasksOfAnyText_data()
    {
        const Texts data;
        data("a list", row("A") + row("B"), u"AB"_s);
        data("cut short", row("A") + row("B").chopped(5), u"A"_s);
        data("a row of other bytes", row("A") + "\xff" + row("B") + row("C"), u"AC"_s);
        data("rows set aside",
             "== 2026-10-01 10:31:07 ltodolist.txt ==\n" + row("A") + "junk^\n" +
                 "== 2026-10-02 09:00:00 ltodolist.txt ==\n" + row("B") + "\n",
             u"AB"_s);
        data("a heading in a description", "3/7/24|Paint|== a ==\n" + row("A").sliced(28), u"A"_s);
    }
    void readsTheTasksOfAnyText()
    {
        const auto [text, keys] = Texts::cells();
        QCOMPARE(keysOf(tasksInText(text, {}, false)), keys);
    }
};

OBLINO_TEST(tst_listdifference, QCoreApplication)

#include "tst_listdifference.moc"
