#include <core/tasklistwriter.h>

#include <base/trace.h>

#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <concepts>
#include <string_view>

namespace oblino {

namespace {

constexpr qsizetype longestNumber = 32; // of a double in its shortest form, or of an integer
constexpr qsizetype bytesPerUnit = 3;   // of UTF-8, for one unit of UTF-16
constexpr qsizetype likelyRow = 256;    // bytes; only a first guess

// Decimal numbers as the file holds them: in the shortest form that reads back to the same value, with a
// fractional part, or with an exponent where they are very small or large. Those met last are remembered; a
// list has few different colours.
class DecimalForms
{
public:
    std::string_view form(double value)
    {
        const auto bits = std::bit_cast<quint64>(value);
        Entry &entry = m_entries[bits * spread >> (64 - logOfRoom)];
        if (entry.size == 0 || entry.bits != bits)
            entry = made(value);
        return {entry.text.data(), entry.size};
    }

private:
    struct Entry
    {
        quint64 bits;
        std::array<char, longestNumber> text;
        size_t size = 0;
    };

    static Entry made(double value)
    {
        Entry entry = {std::bit_cast<quint64>(value), {}};
        const double size = std::abs(value);
        const bool plain = value == 0 || (size >= 1e-4 && size < 1e16);
        const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
        char *end = std::to_chars(entry.text.begin(), entry.text.end(), value, format).ptr;
        const std::string_view digits(entry.text.begin(), end);
        if (digits.find_first_of(".e") == std::string_view::npos)
            end = std::copy_n(".0", 2, end);
        entry.size = static_cast<size_t>(end - entry.text.begin());
        return entry;
    }

    static constexpr int logOfRoom = 7;
    static constexpr quint64 spread = 0x9e3779b97f4a7c15; // 2^64 by the golden ratio, made odd
    std::array<Entry, 1 << logOfRoom> m_entries;
};

// Whether a unit stands in the file as one byte of the same value.
constexpr std::array<bool, 0x80> isPlain = [] {
    std::array<bool, 0x80> plain;
    plain.fill(true);
    plain[separatorFieldsFile] = plain[separatorRowsFile] = false;
    return plain;
}();

// Writes fields one behind the other into a block of bytes that grows.
class RowWriter
{
public:
    explicit RowWriter(qsizetype rows) { grow(rows * likelyRow); }

    void separator(char c)
    {
        makeRoom(1);
        *m_end++ = c;
    }

    void text(const QString &value)
    {
        makeRoom(value.size() * bytesPerUnit);
        char *end = m_end;
        for (const QChar unit : value) {
            if (unit.unicode() >= isPlain.size() || !isPlain[unit.unicode()])
                return anyText(value);
            *end++ = static_cast<char>(unit.unicode());
        }
        m_end = end;
    }

    void number(std::integral auto value)
    {
        makeRoom(longestNumber);
        m_end = std::to_chars(m_end, m_limit, value).ptr;
    }

    void number(double value)
    {
        const std::string_view form = m_decimals.form(value);
        makeRoom(static_cast<qsizetype>(form.size()));
        m_end = std::copy(form.cbegin(), form.cend(), m_end);
    }

    // Month/day/two-digit year, without leading zeros in month and day.
    void day(const QDate &value)
    {
        int year = 0;
        int month = 0;
        int dayOfMonth = 0;
        value.getDate(&year, &month, &dayOfMonth);
        number(month);
        separator('/');
        number(dayOfMonth);
        separator('/');
        const int shortYear = ((year % 100) + 100) % 100;
        separator(static_cast<char>('0' + shortYear / 10));
        separator(static_cast<char>('0' + shortYear % 10));
    }

    QByteArray taken()
    {
        m_bytes.truncate(size());
        return std::move(m_bytes);
    }

private:
    void anyText(const QString &value) { m_end = m_encoder.appendToBuffer(m_end, withLookAlikes(value)); }

    [[nodiscard]] qsizetype size() const { return m_end - m_bytes.constData(); }

    void makeRoom(qsizetype needed)
    {
        if (m_limit - m_end < needed)
            grow(m_bytes.size() + needed);
    }

    void grow(qsizetype by)
    {
        const qsizetype used = m_end ? size() : 0;
        m_bytes.resize(m_bytes.size() + by);
        m_end = m_bytes.data() + used;
        m_limit = m_bytes.data() + m_bytes.size();
    }

    QStringEncoder m_encoder{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    DecimalForms m_decimals;
    QByteArray m_bytes;
    char *m_end = nullptr; // of what is written
    char *m_limit = nullptr;
};

template<typename... Values>
void writeNumbers(RowWriter &row, Values... values)
{
    (..., (row.number(values), row.separator(separatorFieldsFile)));
}

template<typename... Texts>
void writeTexts(RowWriter &row, const Texts &...texts)
{
    (..., (row.text(texts), row.separator(separatorFieldsFile)));
}

void writeRow(RowWriter &row, const task &t, const Color &color)
{
    row.day(t.date.date());
    row.separator(separatorFieldsFile);
    writeTexts(row, t.name, t.desc);
    writeNumbers(row, color.red(), color.green(), color.blue(), color.alpha());
    row.day(t.due.date());
    row.separator(separatorFieldsFile);
    writeNumbers(row, t.status, t.priority);
    writeTexts(row, t.statusName, t.priorityName, t.key);
    writeTexts(row, t.hidden ? QStringLiteral("true") : QStringLiteral("false"));
    writeNumbers(row, t.startHour, t.startMin, t.endHour, t.endMin);
    writeTexts(row, t.client);
    row.text(t.teamMember);
    row.separator(separatorRowsFile);
}

QByteArray composed(const QList<task> &tasks, bool invertedColors)
{
    RowWriter row(tasks.size());
    for (const task &t : tasks)
        writeRow(row, t, invertedColors ? t.color.inverted() : t.color);
    return row.taken();
}

} // namespace

QByteArray taskListText(const QList<task> &tasks, bool invertedColors)
{
    if (invertedColors && Trace::enabled()) {
        for (qsizetype i = 0; i < tasks.size(); ++i)
            trace("Inverted -> Switch to original");
    }
    return composed(tasks, invertedColors);
}

QByteArrayList taskRows(const QList<task> &tasks, bool invertedColors)
{
    QByteArrayList rows = composed(tasks, invertedColors).split(separatorRowsFile);
    rows.removeLast(); // what follows the last separator: nothing
    return rows;
}

} // namespace oblino
