#include <core/taskordering.h>

#include <core/cellidentifiers.h>
#include <core/epochmemo.h>
#include <platform/trace.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace oblino {

namespace {

struct NumberKey
{
    qint64 number;
    qsizetype index;

    friend bool operator<(const NumberKey &a, const NumberKey &b) { return a.number < b.number; }
    friend bool operator>(const NumberKey &a, const NumberKey &b) { return b < a; }
};

// UTF-16 puts the surrogates of U+10000 and above before U+E000..U+FFFF; this swaps the two ranges.
constexpr char16_t inCodePointOrder(char16_t unit)
{
    if (unit < 0xd800)
        return unit;
    return static_cast<char16_t>(unit >= 0xe000 ? unit - 0x0800 : unit + 0x2000);
}

struct TextKey
{
    TextKey(const QString &value, qsizetype position)
        : text(value.normalized(QString::NormalizationForm_C))
        , index(position)
    {
        const auto units = std::min<qsizetype>(text.size(), 4);
        for (qsizetype i = 0; i < 4; ++i)
            start = start << 16 | (i < units ? inCodePointOrder(text.at(i).unicode()) : 0u);
    }

    friend bool operator<(const TextKey &a, const TextKey &b)
    {
        if (a.start != b.start)
            return a.start < b.start;
        const auto [inA, inB] = std::mismatch(a.text.cbegin(), a.text.cend(), b.text.cbegin(), b.text.cend());
        if (inA == a.text.cend() || inB == b.text.cend())
            return inA == a.text.cend() && inB != b.text.cend();
        return inCodePointOrder(inA->unicode()) < inCodePointOrder(inB->unicode());
    }
    friend bool operator>(const TextKey &a, const TextKey &b) { return b < a; }

    QString text;
    quint64 start = 0; // the first four units, which decide most comparisons
    qsizetype index;
};

template<typename Key>
QList<task> rearranged(QList<task> tasks, const std::vector<Key> &keys)
{
    QList<task> result;
    result.reserve(tasks.size());
    if (!tasks.isDetached()) {
        for (const Key &key : keys)
            result.append(tasks.at(key.index));
        return result;
    }
    for (const Key &key : keys)
        result.append(std::move(tasks[key.index]));
    return result;
}

template<typename Key, typename ValueOf>
QList<task> ordered(QList<task> tasks, bool ascending, const ValueOf &valueOf)
{
    std::vector<Key> keys;
    keys.reserve(static_cast<size_t>(tasks.size()));
    for (const task &t : std::as_const(tasks))
        keys.push_back(Key{valueOf(t), static_cast<qsizetype>(keys.size())});

    const auto sortBy = [&keys](auto before) {
        if (std::is_sorted(keys.cbegin(), keys.cend(), before))
            return false;
        std::stable_sort(keys.begin(), keys.end(), before);
        return true;
    };
    const bool moved = ascending ? sortBy(std::less<Key>()) : sortBy(std::greater<Key>());
    return moved ? rearranged(std::move(tasks), keys) : tasks;
}

QString timeText(qint64 hour, qint64 minute, bool ascending)
{
    return QString::number(hour) + (ascending ? QLatin1String(":") : QLatin1String()) +
           QString::number(minute);
}

using Ordering = std::function<QList<task>(QList<task>, bool)>;

Ordering byText(QString task::*field)
{
    return [field](QList<task> tasks, bool ascending) {
        return ordered<TextKey>(std::move(tasks), ascending, [field](const task &t) { return t.*field; });
    };
}

Ordering byNumber(qint64 task::*field)
{
    return [field](QList<task> tasks, bool ascending) {
        return ordered<NumberKey>(std::move(tasks), ascending, [field](const task &t) { return t.*field; });
    };
}

Ordering byMoment(QDateTime task::*field)
{
    return [field](QList<task> tasks, bool ascending) {
        EpochMemo epoch;
        return ordered<NumberKey>(std::move(tasks), ascending,
                                  [field, &epoch](const task &t) { return epoch.milliseconds(t.*field); });
    };
}

Ordering byTime(qint64 task::*hour, qint64 task::*minute)
{
    return [hour, minute](QList<task> tasks, bool ascending) {
        return ordered<TextKey>(std::move(tasks), ascending, [hour, minute, ascending](const task &t) {
            return timeText(t.*hour, t.*minute, ascending);
        });
    };
}

const std::vector<std::pair<QString, Ordering>> &orderings()
{
    static const std::vector<std::pair<QString, Ordering>> table = {
        {CellIdentifiers::NameCell, byText(&task::name)},
        {CellIdentifiers::DescCell, byText(&task::desc)},
        {CellIdentifiers::StatusCell, byNumber(&task::status)},
        {CellIdentifiers::DateCell, byMoment(&task::date)},
        {CellIdentifiers::PriorityCell, byNumber(&task::priority)},
        {CellIdentifiers::DueCell, byMoment(&task::due)},
        {CellIdentifiers::KeyCell, byText(&task::key)},
        {CellIdentifiers::StartTime, byTime(&task::startHour, &task::startMin)},
        {CellIdentifiers::EndTime, byTime(&task::endHour, &task::endMin)},
        {CellIdentifiers::ClientCell, byText(&task::client)},
        {CellIdentifiers::TeamMemberCell, byText(&task::teamMember)},
    };
    return table;
}

} // namespace

QList<task> orderedTasks(QList<task> tasks, const SortDescriptor &descriptor)
{
    for (const auto &[key, ordering] : orderings()) {
        if (descriptor.key == key)
            return ordering(std::move(tasks), descriptor.ascending);
    }
    return tasks;
}

void appendTrace(QByteArray &line, const SortDescriptor &descriptor)
{
    appendTrace(line, QStringView(descriptor.key.value_or(QStringLiteral("none"))));
    line += descriptor.ascending ? " ascending" : " descending";
}

} // namespace oblino
