#include "tasksupport.h"

#include <core/taskmerge.h>

using Merges = Table<QByteArray, QByteArray, QByteArray, QByteArray, QByteArray>;

namespace {

// A task a word: its key is the first letter, the rest its name.
QList<task> listOf(const QByteArray &words)
{
    QList<task> tasks;
    for (const QString &word : QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts)) {
        const QDateTime day = QDate(2026, 3, 8).startOfDay();
        tasks.append({.key = word.first(1), .date = day, .name = word.mid(1), .due = day});
    }
    return tasks;
}

QByteArray wordsOf(const QList<task> &tasks)
{
    QStringList words;
    for (const task &t : tasks)
        words += t.key + t.name;
    return words.join(u' ').toUtf8();
}

} // namespace

class tst_taskmerge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesEachTaskFromTheSideThatChangedIt_data()
    {
        Merges row; // base, ours, theirs, merged, overruled
        row("nothing happened", "a1 b1", "a1 b1", "a1 b1", "a1 b1", "");
        row("changed here", "a1 b1", "a2 b1", "a1 b1", "a2 b1", "");
        row("changed there", "a1 b1", "a1 b1", "a1 b2", "a1 b2", "");
        row("changed on both sides, not the same", "a1 b1", "a2 b1", "a1 b2", "a2 b2", "");
        row("one changed differently", "a1 b1", "a2 b1", "a3 b1", "a2 b1", "a3");
        row("one changed alike", "a1 b1", "a2 b1", "a2 b1", "a2 b1", "");
        row("added here, behind the first", "a1 b1", "a1 x1 b1", "a1 b1", "a1 x1 b1", "");
        row("added there, behind the first", "a1 b1", "a1 b1", "a1 x1 b1", "a1 x1 b1", "");
        row("added on both sides", "a1", "a1 x1", "y1 a1 z1", "y1 a1 x1 z1", "");
        row("added with one key", "a1", "a1 x1", "a1 x2", "a1 x1", "x2");
        row("removed here", "a1 b1", "b1", "a1 b1", "b1", "");
        row("removed there", "a1 b1", "a1 b1", "a1", "a1", "");
        row("removed on both sides", "a1 b1 c1", "b1 c1", "b1 c1", "b1 c1", "");
        row("removed here, changed there", "a1 b1", "b1", "a2 b1", "b1", "a2");
        row("changed here, removed there", "a1 b1", "a2 b1", "b1", "a2 b1", "");
        row("order changed here", "a1 b1 c1", "c1 b1 a1", "a1 b1 c1 x1", "c1 x1 b1 a1", "");
        row("order changed there", "a1 b1 c1", "a1 b1 c2", "c1 b1 a1", "c2 b1 a1", "");
        row("order changed on both sides", "a1 b1 c1", "b1 a1 c1", "c1 b1 a1", "b1 a1 c1", "");
        row("one key twice, the second changed", "a1 a2", "a1 a2", "a1 a3", "a1 a3", "");
        row("nothing was known: the union", "", "a1 b1", "b1 c1", "a1 b1 c1", "");
        row("everything removed there", "a1 b1", "a1 b2", "", "b2", "");
        row("other scripts", "aÄ bमे", "aÄ b日本", "a🎉 bमे", "a🎉 b日本", "");
    }

    void takesEachTaskFromTheSideThatChangedIt()
    {
        const auto [base, ours, theirs, merged, overruled] = Merges::cells();
        for (const bool inverted : {false, true}) {
            const TaskMerge merge = mergedTasks(listOf(base), listOf(ours), listOf(theirs), inverted);
            QCOMPARE(wordsOf(merge.tasks), merged);
            QCOMPARE(wordsOf(merge.overruled), overruled);
        }
    }
};

OBLINO_TEST(tst_taskmerge, QCoreApplication)

#include "tst_taskmerge.moc"
