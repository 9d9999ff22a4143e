#include <ui/tabletexts.h>

#include <core/tasksearch.h>
#include <core/taskviews.h>

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("TableTexts", text);
}

QString shortened(const QString &text)
{
    constexpr qsizetype enough = 60; // UTF-16 units
    return text.size() > enough ? text.first(enough - 1) + QChar(u'…') : text;
}

// The view that says most of a task among those that show it.
int bestViewOf(const task &t, QDate day)
{
    constexpr int views[] = {1, 2, 0, 4, 5, 3, globalAllView};
    return *std::ranges::find_if(views, [&](int view) { return occurrencesInView(t, view, day) > 0; });
}

} // namespace

EmptyText emptyText(const EmptyTable &table)
{
    const QLocale locale;
    if (table.all == 0)
        return {tr("No tasks yet"), tr("Add the first one with Task ▸ New Task… (Ctrl+N).")};
    const QString term = shortened(table.searchTerm);
    if (!term.isEmpty() && table.matches == 0)
        return {tr("No task matches “%1”").arg(term), tr("Press Esc in the search field to end the search.")};
    if (!term.isEmpty()) {
        return {tr("No task in the view %1 matches “%2”").arg(table.view, term),
                table.matches == 1 ? tr("1 task in another view does; Global-All (Ctrl+7) shows it.")
                                   : tr("%1 tasks in other views do; Global-All (Ctrl+7) shows them.")
                                         .arg(locale.toString(table.matches))};
    }
    return {tr("No tasks in the view %1").arg(table.view),
            table.all == 1 ? tr("Your task is in another view; Global-All (Ctrl+7) shows it.")
                           : tr("Your %1 tasks are in other views; Global-All (Ctrl+7) shows them.")
                                 .arg(locale.toString(table.all))};
}

QString dueText(const DueCounts &counts)
{
    const QLocale locale;
    QStringList parts;
    if (counts.today > 0)
        parts += tr("%1 due today").arg(locale.toString(counts.today));
    if (counts.overdue > 0)
        parts += tr("%1 overdue").arg(locale.toString(counts.overdue));
    return parts.join(tr(", "));
}

QString addedText(const QList<task> &added, int view, const QString &searchTerm, QDate day)
{
    if (added.size() != 1)
        return tr("Added %1 tasks.").arg(QLocale().toString(added.size()));
    const task &t = added.first();
    const QString name = shortened(t.name);
    const QStringList labels = viewLabels();
    const QString &best = labels.at(bestViewOf(t, day));
    if (!searchTerm.isEmpty() && TaskSearch().matching(added, searchTerm).empty())
        return tr("Added “%1” to %2; it does not match the search.").arg(name, best);
    if (occurrencesInView(t, view, day) == 0)
        return tr("Added “%1” to %2; this view shows %3.").arg(name, best, labels.value(view));
    return tr("Added “%1”.").arg(name);
}

} // namespace oblino
