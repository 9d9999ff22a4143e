#include "tasksupport.h"

#include <core/listdifference.h>
#include <core/tasklistreader.h>

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
};

OBLINO_TEST(tst_listdifference, QCoreApplication)

#include "tst_listdifference.moc"
