#include <core/taskrowreader.h>

#include <core/filedays.h>
#include <core/tasklistwriter.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>

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
    if (rest != end)
        return std::nullopt;
    if constexpr (std::floating_point<Number>) {
        if (error == std::errc::result_out_of_range)
            return trimmed.contains(QLatin1String("e-"), Qt::CaseInsensitive)
                       ? 0
                       : std::numeric_limits<Number>::infinity();
    }
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

std::optional<qint64> integerIn(QStringView text)
{
    constexpr qsizetype certainlyFits = 18; // digits
    if (text.isEmpty() || text.size() > certainlyFits)
        return numberIn<qint64>(text);
    qint64 number = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return numberIn<qint64>(text);
        number = number * 10 + (c.unicode() - u'0');
    }
    return number;
}

std::optional<double> componentIn(QStringView text)
{
    const auto number = numberIn<double>(text);
    return number && !std::isfinite(*number) ? std::optional(1.0) : number;
}

std::optional<Color> colorIn(QStringView redText, QStringView greenText, QStringView blueText,
                             QStringView alphaText)
{
    const auto red = componentIn(redText);
    const auto green = componentIn(greenText);
    const auto blue = componentIn(blueText);
    const auto alpha = componentIn(alphaText);
    const bool isColor = red && green && blue && alpha;
    return isColor ? std::optional(Color(*red, *green, *blue, *alpha)) : std::nullopt;
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
    : m_firstYear(fileDays(day).first.year())
{
}

void TaskRowReader::split(QStringView row)
{
    m_count = 0;
    for (const QChar *begin = row.cbegin();;) {
        const QChar *const end = std::find(begin, row.cend(), QLatin1Char(separatorFieldsFile));
        if (m_count < knownFields)
            m_fields[static_cast<size_t>(m_count)] = {begin, end};
        ++m_count;
        if (end == row.cend())
            return;
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
    const auto status = integerIn(field(9));
    const auto priority = integerIn(field(10));
    const auto times = hasTimes() ? timesOfRow() : std::optional(defaults);
    if (!date || !due || !lightColor || !status || !priority || !times)
        return std::nullopt;

    const bool hidden = hasKey() && m_count > 13 && field(14) == QLatin1String("true");
    return task{.key = hasKey() ? field(13).toString() : QString(),
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
                .startHour = times->startHour,
                .startMin = times->startMin,
                .endHour = times->endHour,
                .endMin = times->endMin};
}

bool TaskRowReader::hasKey() const
{
    return m_count == 13 || m_count == 14 || hasTimes();
}

std::optional<DefaultTimes> TaskRowReader::timesOfRow() const
{
    const auto startHour = integerIn(field(15));
    const auto startMin = integerIn(field(16));
    const auto endHour = integerIn(field(17));
    const auto endMin = integerIn(field(18));
    if (!startHour || !startMin || !endHour || !endMin)
        return std::nullopt;
    return DefaultTimes{*startHour, *startMin, *endHour, *endMin};
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

std::optional<Color> TaskRowReader::color()
{
    const QStringView fields(field(4).begin(), field(7).end());
    return m_colors.value(fields,
                          [this](QStringView) { return colorIn(field(4), field(5), field(6), field(7)); });
}

QString TaskRowReader::shared(QStringView text)
{
    return m_texts.value(text, [](QStringView own) { return own.toString(); });
}

} // namespace oblino
