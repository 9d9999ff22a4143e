#include <core/taskrowreader.h>

#include <core/tasklistwriter.h>

#include <charconv>
#include <cmath>

namespace oblino {

namespace {

constexpr size_t longestNumber = 64;

template<typename Number>
std::optional<Number> numberIn(QStringView text)
{
    std::array<char, longestNumber> digits;
    const QStringView trimmed = text.trimmed();
    if (trimmed.isEmpty() || static_cast<size_t>(trimmed.size()) > digits.size())
        return std::nullopt;
    char *end = digits.data();
    for (const QChar c : trimmed)
        *end++ = c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : '?';
    Number number = {};
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

// Takes one or two digits off the front; -1 when there are none.
int takeNumber(QStringView &text)
{
    int number = -1;
    qsizetype taken = 0;
    while (taken < 2 && taken < text.size() && text.at(taken) >= u'0' && text.at(taken) <= u'9') {
        number = (taken == 0 ? 0 : number * 10) + (text.at(taken).unicode() - u'0');
        ++taken;
    }
    text = text.sliced(taken);
    return number;
}

bool takeSlash(QStringView &text)
{
    if (!text.startsWith(u'/'))
        return false;
    text = text.sliced(1);
    return true;
}

} // namespace

TaskRowReader::TaskRowReader(QDate day)
    : m_firstYear(day.year() - 50)
{
}

void TaskRowReader::split(QStringView row)
{
    m_count = 0;
    for (qsizetype begin = 0; begin <= row.size(); ++m_count) {
        qsizetype end = row.indexOf(QLatin1Char(fieldSeparator), begin);
        if (end < 0)
            end = row.size();
        if (m_count < knownFields)
            m_fields[static_cast<size_t>(m_count)] = row.sliced(begin, end - begin);
        begin = end + 1;
    }
}

std::optional<task> TaskRowReader::read(const DefaultTimes &defaults, bool dark)
{
    if (m_count < 12 || (m_count >= 15 && m_count <= 17))
        return std::nullopt;
    const auto date = day(field(1));
    const auto due = day(field(8));
    const auto lightColor = color();
    const auto status = numberIn<qint64>(field(9));
    const auto priority = numberIn<qint64>(field(10));
    if (!date || !due || !lightColor || !status || !priority)
        return std::nullopt;

    const bool hidden = hasKey() && m_count > 13 && field(14) == QLatin1String("true");
    task t{.key = hasKey() ? field(13).toString() : QString(),
           .date = *date,
           .name = field(2).toString(),
           .desc = field(3).toString(),
           .client = m_count == 20 ? shared(field(19)) : QString(),
           .teamMember = m_count == 20 ? shared(field(20)) : QString(),
           .color = dark ? lightColor->inverted() : *lightColor,
           .due = *due,
           .status = *status,
           .priority = *priority,
           .statusName = shared(field(11)),
           .priorityName = shared(field(12)),
           .hidden = hidden,
           .startHour = defaults.startHour,
           .startMin = defaults.startMin,
           .endHour = defaults.endHour,
           .endMin = defaults.endMin};
    return readTimes(t, defaults) ? std::optional(std::move(t)) : std::nullopt;
}

bool TaskRowReader::hasKey() const
{
    return m_count == 13 || m_count == 14 || hasTimes();
}

bool TaskRowReader::readTimes(task &t, const DefaultTimes &defaults) const
{
    if (!hasTimes())
        return true;
    const auto startHour = numberIn<qint64>(field(15));
    const auto startMin = numberIn<qint64>(field(16));
    const auto endHour = numberIn<qint64>(field(17));
    const auto endMin = numberIn<qint64>(field(18));
    t.startHour = startHour.value_or(defaults.startHour);
    t.startMin = startMin.value_or(defaults.startMin);
    t.endHour = endHour.value_or(defaults.endHour);
    t.endMin = endMin.value_or(defaults.endMin);
    return startHour && startMin && endHour && endMin;
}

std::optional<QDateTime> TaskRowReader::day(QStringView text)
{
    QStringView rest = text.trimmed();
    const int month = takeNumber(rest);
    if (!takeSlash(rest))
        return std::nullopt;
    const int dayOfMonth = takeNumber(rest);
    if (!takeSlash(rest) || rest.size() != 2)
        return std::nullopt;
    const int shortYear = takeNumber(rest);
    if (month < 0 || dayOfMonth < 0 || shortYear < 0 || !rest.isEmpty())
        return std::nullopt;

    QDateTime &known = m_days[(shortYear * 100 + month) * 100 + dayOfMonth];
    if (!known.isValid()) {
        const int year = m_firstYear + (shortYear - m_firstYear % 100 + 100) % 100;
        known = QDate(year, month, dayOfMonth).startOfDay();
    }
    return known.isValid() ? std::optional(known) : std::nullopt;
}

std::optional<Color> TaskRowReader::color() const
{
    const auto red = numberIn<double>(field(4));
    const auto green = numberIn<double>(field(5));
    const auto blue = numberIn<double>(field(6));
    const auto alpha = numberIn<double>(field(7));
    if (!red || !green || !blue || !alpha)
        return std::nullopt;
    const bool finite =
        std::isfinite(*red) && std::isfinite(*green) && std::isfinite(*blue) && std::isfinite(*alpha);
    return finite ? std::optional(Color(*red, *green, *blue, *alpha)) : std::nullopt;
}

QString TaskRowReader::shared(QStringView text)
{
    const auto found = m_texts.constFind(text);
    if (found != m_texts.cend())
        return *found;
    QString made = text.toString();
    m_texts.insert(made, made);
    return made;
}

} // namespace oblino
