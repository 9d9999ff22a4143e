#include <core/taskordering.h>

#include <base/trace.h>
#include <core/cellidentifiers.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <numeric>
#include <utility>
#include <vector>

namespace oblino {

namespace {

constexpr qint64 msPerDay = 86'400'000;

// What a task is sorted by, or the beginning of it, and where the task stands.
struct Key
{
    qint64 number;
    qsizetype place;
};
using Keys = std::vector<Key>;

bool isSmaller(const Key &a, const Key &b)
{
    return a.number < b.number;
}

template<typename NumberOf>
Keys keysOf(const QList<task> &tasks, const NumberOf &numberOf)
{
    Keys keys;
    keys.reserve(static_cast<size_t>(tasks.size()));
    for (const task &t : tasks)
        keys.push_back({numberOf(t), static_cast<qsizetype>(keys.size())});
    return keys;
}

template<typename Before>
void sort(Keys &keys, bool ascending, const Before &before)
{
    const auto after = [&before](const Key &a, const Key &b) { return before(b, a); };
    if (ascending)
        std::stable_sort(keys.begin(), keys.end(), before);
    else
        std::stable_sort(keys.begin(), keys.end(), after);
}

TaskPlaces placesOf(const Keys &keys)
{
    TaskPlaces places;
    places.reserve(keys.size());
    for (const Key &key : keys)
        places.push_back(key.place);
    return places;
}

// UTF-16 puts the surrogates of U+10000 and above before U+E000..U+FFFF; this swaps the two ranges.
constexpr char16_t inCodePointOrder(char16_t unit)
{
    if (unit < 0xd800)
        return unit;
    return static_cast<char16_t>(unit >= 0xe000 ? unit - 0x0800 : unit + 0x2000);
}

// A form of the text whose units compare as the code points of the text do; the same for texts that are
// canonically equivalent.
QString comparable(const QString &text)
{
    QString form = text.normalized(QString::NormalizationForm_C);
    if (std::any_of(form.cbegin(), form.cend(), [](QChar unit) { return unit.unicode() >= 0xd800; })) {
        for (QChar &unit : form)
            unit = inCodePointOrder(unit.unicode());
    }
    return form;
}

// The first nine characters in seven bits each, which compare as the texts do and decide most comparisons: 0
// stands behind the end of the text, and 127 for everything from the first unit that does not fit.
qint64 startOf(QStringView text)
{
    constexpr qsizetype length = 9;
    constexpr qint64 other = 127;
    qint64 start = 0;
    qint64 code = 0;
    for (qsizetype i = 0; i < length; ++i) {
        if (code != other)
            code = i < text.size() ? std::min<qint64>(text.at(i).unicode() + 1, other) : 0;
        start = start << 7 | code;
    }
    return start;
}

constexpr bool isWholeText(qint64 start)
{
    return (start & 127) == 0;
}

QString timeText(qint64 hour, qint64 minute, bool ascending)
{
    constexpr size_t longest = 20; // of a number
    std::array<char, 2 * longest + 1> text;
    char *end = std::to_chars(text.begin(), text.end(), hour).ptr;
    if (ascending)
        *end++ = ':';
    end = std::to_chars(end, text.end(), minute).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

template<typename TextOf>
TaskPlaces orderedByText(const QList<task> &tasks, bool ascending, const TextOf &textOf)
{
    std::vector<QString> texts;
    texts.reserve(static_cast<size_t>(tasks.size()));
    Keys keys =
        keysOf(tasks, [&texts, &textOf](const task &t) { return startOf(texts.emplace_back(textOf(t))); });
    sort(keys, ascending, [&texts](const Key &a, const Key &b) {
        if (a.number != b.number || isWholeText(a.number))
            return a.number < b.number;
        const QString &textOfA = texts[static_cast<size_t>(a.place)];
        const QString &textOfB = texts[static_cast<size_t>(b.place)];
        return !textOfA.isSharedWith(textOfB) && textOfA < textOfB;
    });
    return placesOf(keys);
}

// The local time, which takes no time zone rules to find, and the daylight-saving state, which tells apart
// two moments of the same local time, in the last bit.
qint64 localNumber(const QDateTime &moment)
{
    const qint64 local = moment.date().toJulianDay() * msPerDay + moment.time().msecsSinceStartOfDay();
    return 2 * local + (moment.isDaylightTime() ? 1 : 0);
}

qint64 dayOf(const Key &key)
{
    return (key.number >> 1) / msPerDay; // Julian
}

bool isNear(const Key &a, const Key &b)
{
    return a.number != b.number && std::abs((a.number >> 1) - (b.number >> 1)) < msPerDay;
}

// The offset from UTC once the day is over differs from the one before.
bool doClocksChangeOn(qint64 day)
{
    const auto offsetAtEndOf = [](qint64 julianDay) {
        return QDate::fromJulianDay(julianDay).endOfDay().offsetFromUtc();
    };
    return offsetAtEndOf(day - 1) != offsetAtEndOf(day);
}

// Keys that are sorted by local time stand in the order of their moments but for those within a day of a
// change of the clocks: their moments decide.
void sortWhereClocksChange(Keys &keys, const QList<task> &tasks, bool ascending, QDateTime task::*field)
{
    qint64 checked = 0; // the last day
    for (auto key = keys.begin(); key != keys.end() && key + 1 != keys.end(); ++key) {
        const qint64 day = dayOf(*key);
        if (day == checked || !isNear(*key, *(key + 1)))
            continue;
        checked = day;
        if (!doClocksChangeOn(day))
            continue;
        const auto isFar = [day](const Key &other) { return std::abs(dayOf(other) - day) > 1; };
        const auto begin = std::find_if(std::make_reverse_iterator(key), keys.rend(), isFar).base();
        const auto end = std::find_if(key, keys.end(), isFar);
        Keys moments;
        std::transform(begin, end, std::back_inserter(moments), [&](const Key &local) {
            return Key{(tasks.at(local.place).*field).toMSecsSinceEpoch(), local.place};
        });
        std::sort(moments.begin(), moments.end(),
                  [](const Key &a, const Key &b) { return a.place < b.place; });
        sort(moments, ascending, isSmaller);
        // The local number goes with the place.
        std::transform(moments.cbegin(), moments.cend(), begin, [&](const Key &moment) {
            return Key{localNumber(tasks.at(moment.place).*field), moment.place};
        });
    }
}

TaskPlaces orderedByMoment(const QList<task> &tasks, bool ascending, QDateTime task::*field)
{
    const bool areLocal = std::all_of(tasks.cbegin(), tasks.cend(), [field](const task &t) {
        return (t.*field).timeSpec() == Qt::LocalTime && (t.*field).isValid();
    });
    Keys keys = keysOf(tasks, [areLocal, field](const task &t) {
        return areLocal ? localNumber(t.*field) : (t.*field).toMSecsSinceEpoch();
    });
    sort(keys, ascending, isSmaller);
    if (areLocal)
        sortWhereClocksChange(keys, tasks, ascending, field);
    return placesOf(keys);
}

using Ordering = std::function<TaskPlaces(const QList<task> &, bool)>;

Ordering byText(QString task::*field)
{
    return [field](const QList<task> &tasks, bool ascending) {
        return orderedByText(tasks, ascending, [field](const task &t) { return comparable(t.*field); });
    };
}

Ordering byNumber(qint64 task::*field)
{
    return [field](const QList<task> &tasks, bool ascending) {
        Keys keys = keysOf(tasks, [field](const task &t) { return t.*field; });
        sort(keys, ascending, isSmaller);
        return placesOf(keys);
    };
}

Ordering byMoment(QDateTime task::*field)
{
    return [field](const QList<task> &tasks, bool ascending) {
        return orderedByMoment(tasks, ascending, field);
    };
}

Ordering byDateAndTime()
{
    return [](const QList<task> &tasks, bool ascending) {
        // A file may hold any number in place of an hour or a minute.
        static constexpr qint64 most = 999;
        const auto limited = [](qint64 number) { return std::clamp<qint64>(number, 0, most); };
        Keys keys = keysOf(tasks, [&](const task &t) {
            return (t.date.date().toJulianDay() * (most + 1) + limited(t.startHour)) * (most + 1) +
                   limited(t.startMin);
        });
        sort(keys, ascending, isSmaller);
        return placesOf(keys);
    };
}

Ordering byTime(qint64 task::*hour, qint64 task::*minute)
{
    return [hour, minute](const QList<task> &tasks, bool ascending) {
        return orderedByText(tasks, ascending, [hour, minute, ascending](const task &t) {
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
        {dateAndTimeOrder, byDateAndTime()},
    };
    return table;
}

} // namespace

TaskPlaces placesInOrder(const QList<task> &tasks, const SortDescriptor &descriptor)
{
    for (const auto &[key, ordering] : orderings()) {
        if (descriptor.key == key)
            return ordering(tasks, descriptor.ascending);
    }
    TaskPlaces places(static_cast<size_t>(tasks.size()));
    std::iota(places.begin(), places.end(), 0);
    return places;
}

void appendTrace(QByteArray &line, const SortDescriptor &descriptor)
{
    appendTrace(line, QStringView(descriptor.key.value_or(QStringLiteral("none"))));
    line += descriptor.ascending ? " ascending" : " descending";
}

} // namespace oblino
