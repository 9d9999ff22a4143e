#include <core/taskmerge.h>

#include <core/tasklistwriter.h>

#include <QHash>
#include <QSet>

#include <utility>

namespace oblino {

namespace {

// A task's key, and how many of the same key stand before it.
using Identity = std::pair<QString, int>;

// A list whose tasks are found by identity and compared by row.
class Side
{
public:
    Side(const QList<task> &tasks, bool invertedColors)
        : m_tasks(tasks)
        , m_rows(taskRows(tasks, invertedColors))
    {
        QHash<QString, int> counts;
        m_identities.reserve(tasks.size());
        m_places.reserve(tasks.size());
        for (const task &t : tasks) {
            m_identities.append({t.key, counts[t.key]++});
            m_places.insert(m_identities.last(), m_places.size());
        }
    }

    [[nodiscard]] const QList<Identity> &identities() const { return m_identities; }
    [[nodiscard]] bool has(const Identity &identity) const { return m_places.contains(identity); }
    [[nodiscard]] const task &taskOf(const Identity &identity) const
    {
        return m_tasks.at(m_places.value(identity));
    }
    // Null where the task is not here.
    [[nodiscard]] QByteArray rowOf(const Identity &identity) const
    {
        const auto place = m_places.constFind(identity);
        return place == m_places.cend() ? QByteArray() : m_rows.at(*place);
    }

private:
    const QList<task> &m_tasks;
    QByteArrayList m_rows;
    QList<Identity> m_identities;
    QHash<Identity, qsizetype> m_places;
};

QList<Identity> sharedWith(const Side &other, const QList<Identity> &identities)
{
    QList<Identity> shared;
    for (const Identity &identity : identities) {
        if (other.has(identity))
            shared.append(identity);
    }
    return shared;
}

// The order of `first`, into which what only `second` has is put behind what stands before it there.
QList<Identity> woven(const Side &first, const Side &second)
{
    QHash<Identity, QList<Identity>> followers;
    QList<Identity> order; // what comes before all of `first`
    const Identity *last = nullptr;
    for (const Identity &identity : second.identities()) {
        if (first.has(identity))
            last = &identity;
        else if (last)
            followers[*last].append(identity);
        else
            order.append(identity);
    }
    for (const Identity &identity : first.identities()) {
        order.append(identity);
        order.append(followers.value(identity));
    }
    return order;
}

} // namespace

TaskMerge mergedTasks(const QList<task> &base, const QList<task> &ours, const QList<task> &theirs,
                      bool invertedColors)
{
    const Side known(base, invertedColors);
    const Side here(ours, invertedColors);
    const Side there(theirs, invertedColors);
    const bool isOrderOurs = sharedWith(known, here.identities()) != sharedWith(here, known.identities());

    TaskMerge merge;
    for (const Identity &identity : isOrderOurs ? woven(here, there) : woven(there, here)) {
        const QByteArray before = known.rowOf(identity);
        const QByteArray our = here.rowOf(identity);
        const QByteArray their = there.rowOf(identity);
        const bool isTheirs = our == before && their != before;
        if (!isTheirs && !their.isNull() && their != before && their != our)
            merge.overruled.append(there.taskOf(identity));
        if (!(isTheirs ? their : our).isNull())
            merge.tasks.append(isTheirs ? there.taskOf(identity) : here.taskOf(identity));
    }
    return merge;
}

} // namespace oblino
