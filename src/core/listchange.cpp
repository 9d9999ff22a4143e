#include <core/listchange.h>

#include <QHash>

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

namespace oblino {

namespace {

template<typename Number>
QByteArray packedAs(const TaskPlaces &order)
{
    QByteArray bytes(static_cast<qsizetype>(order.size() * sizeof(Number)), Qt::Uninitialized);
    char *out = bytes.data();
    for (const qsizetype place : order) {
        const auto number = static_cast<Number>(place);
        std::memcpy(out, &number, sizeof number);
        out += sizeof number;
    }
    return bytes;
}

bool fitsTwoBytes(qsizetype count)
{
    return count <= std::numeric_limits<quint16>::max();
}

QByteArray packed(const TaskPlaces &order)
{
    return fitsTwoBytes(static_cast<qsizetype>(order.size())) ? packedAs<quint16>(order)
                                                              : packedAs<quint32>(order);
}

template<typename Number>
TaskPlaces unpackedAs(const QByteArray &bytes)
{
    TaskPlaces order(static_cast<size_t>(bytes.size()) / sizeof(Number));
    const char *in = bytes.constData();
    for (qsizetype &place : order) {
        Number number = 0;
        std::memcpy(&number, in, sizeof number);
        in += sizeof number;
        place = static_cast<qsizetype>(number);
    }
    return order;
}

// An order of so many tasks.
TaskPlaces unpacked(const QByteArray &bytes, qsizetype count)
{
    return fitsTwoBytes(count) ? unpackedAs<quint16>(bytes) : unpackedAs<quint32>(bytes);
}

TaskPlaces inverse(const TaskPlaces &order)
{
    TaskPlaces result(order.size());
    for (size_t i = 0; i < order.size(); ++i)
        result[static_cast<size_t>(order[i])] = static_cast<qsizetype>(i);
    return result;
}

// Takes the tasks away that stand at some places and puts others to places of the list that is then.
QList<task> exchangedIn(QList<task> list, const TaskPlaces &left, const TaskPlaces &come,
                        const QList<task> &brought)
{
    if (left == come) {
        for (size_t i = 0; i < come.size(); ++i)
            list[come[i]] = brought.at(static_cast<qsizetype>(i));
        return list;
    }
    const qsizetype size =
        list.size() + static_cast<qsizetype>(come.size()) - static_cast<qsizetype>(left.size());
    QList<task> result;
    result.reserve(size);
    const bool mayMove = list.isDetached();
    qsizetype from = 0;
    size_t nextLeft = 0;
    size_t nextCome = 0;
    while (result.size() < size) {
        if (nextCome < come.size() && come[nextCome] == result.size()) {
            result.append(brought.at(static_cast<qsizetype>(nextCome++)));
            continue;
        }
        for (; nextLeft < left.size() && left[nextLeft] == from; ++nextLeft)
            ++from;
        if (mayMove)
            result.append(std::move(list[from]));
        else
            result.append(list.at(from));
        ++from;
    }
    return result;
}

// The place in one list of the task that stands at each place of another, -1 where it has none: equal tasks,
// and among those the first for the first.
TaskPlaces placesOfEqual(const QList<task> &list, const QList<task> &other)
{
    QHash<QString, QList<qsizetype>> byKey;
    for (qsizetype place = other.size() - 1; place >= 0; --place)
        byKey[other.at(place).key].append(place);
    TaskPlaces result(static_cast<size_t>(list.size()), -1);
    for (qsizetype place = 0; place < list.size(); ++place) {
        const auto same = byKey.find(list.at(place).key);
        if (same == byKey.end())
            continue;
        const auto found = std::find_if(same->crbegin(), same->crend(), [&](qsizetype candidate) {
            return other.at(candidate) == list.at(place);
        });
        if (found == same->crend())
            continue;
        result[static_cast<size_t>(place)] = *found;
        same->erase(std::prev(found.base()));
    }
    return result;
}

// The same list with the tasks that another has too in the order in which they stand there.
TaskPlaces orderAsIn(const TaskPlaces &placesThere)
{
    TaskPlaces order(placesThere.size());
    std::iota(order.begin(), order.end(), 0);
    TaskPlaces common;
    std::copy_if(order.cbegin(), order.cend(), std::back_inserter(common),
                 [&](qsizetype place) { return placesThere[static_cast<size_t>(place)] >= 0; });
    TaskPlaces sorted = common;
    std::ranges::sort(sorted, {}, [&](qsizetype place) { return placesThere[static_cast<size_t>(place)]; });
    for (size_t i = 0; i < common.size(); ++i)
        order[static_cast<size_t>(common[i])] = sorted[i];
    return order;
}

} // namespace

ListChange ListChange::exchanged(TaskPlaces left, QList<task> taken, TaskPlaces come, QList<task> brought)
{
    ListChange change;
    if (left == come && taken == brought)
        return change;
    change.m_left = std::move(left);
    change.m_taken = std::move(taken);
    change.m_come = std::move(come);
    change.m_brought = std::move(brought);
    return change;
}

ListChange ListChange::reordered(const TaskPlaces &order)
{
    ListChange change;
    if (!std::ranges::is_sorted(order))
        change.m_order = packed(order);
    return change;
}

QList<ListChange> ListChange::between(const QList<task> &before, const QList<task> &after)
{
    QList<ListChange> changes;
    const ListChange order = reordered(orderAsIn(placesOfEqual(before, after)));
    const QList<task> ordered = order.isEmpty() ? before : order.made(before);
    if (!order.isEmpty())
        changes.append(order);

    const TaskPlaces there = placesOfEqual(ordered, after);
    TaskPlaces left;
    QList<task> taken;
    std::vector<bool> stays(static_cast<size_t>(after.size()));
    for (qsizetype place = 0; place < ordered.size(); ++place) {
        if (const qsizetype same = there[static_cast<size_t>(place)]; same >= 0) {
            stays[static_cast<size_t>(same)] = true;
        } else {
            left.push_back(place);
            taken.append(ordered.at(place));
        }
    }
    TaskPlaces come;
    QList<task> brought;
    for (qsizetype place = 0; place < after.size(); ++place) {
        if (!stays[static_cast<size_t>(place)]) {
            come.push_back(place);
            brought.append(after.at(place));
        }
    }
    const ListChange exchange = exchanged(std::move(left), taken, std::move(come), brought);
    if (!exchange.isEmpty())
        changes.append(exchange);
    return changes;
}

QList<ListChange> ListChange::joined(const QList<ListChange> &orders)
{
    TaskPlaces all;
    for (const ListChange &change : orders) {
        const qsizetype bytes = change.m_order.size();
        const qsizetype count = fitsTwoBytes(bytes / 2) ? bytes / 2 : bytes / 4;
        TaskPlaces order = unpacked(change.m_order, count);
        for (qsizetype &place : order)
            place = all.empty() ? place : all[static_cast<size_t>(place)];
        all = std::move(order);
    }
    const ListChange change = reordered(all);
    return change.isEmpty() ? QList<ListChange>() : QList<ListChange>{change};
}

QList<task> ListChange::made(QList<task> list) const
{
    if (m_order.isEmpty())
        return exchangedIn(std::move(list), m_left, m_come, m_brought);
    TaskPlaces order = unpacked(m_order, list.size());
    return rearranged(std::move(list), std::move(order));
}

QList<task> ListChange::takenBack(QList<task> list) const
{
    if (m_order.isEmpty())
        return exchangedIn(std::move(list), m_come, m_left, m_taken);
    TaskPlaces order = inverse(unpacked(m_order, list.size()));
    return rearranged(std::move(list), std::move(order));
}

void ListChange::invertColors()
{
    for (QList<task> *tasks : {&m_taken, &m_brought}) {
        for (task &t : *tasks)
            t.color = t.color.inverted();
    }
}

} // namespace oblino
