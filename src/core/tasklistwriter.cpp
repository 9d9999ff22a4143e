#include <core/tasklistwriter.h>

#include <platform/trace.h>

#include <QStringEncoder>

#include <charconv>
#include <cmath>
#include <concepts>
#include <cstring>

namespace oblino {

namespace {

constexpr qsizetype longestNumber = 32; // of a double in its shortest form, or of an integer
constexpr qsizetype bytesPerUnit = 3;   // of UTF-8, for one unit of UTF-16
constexpr qsizetype likelyRow = 256;    // bytes; only a first guess

// Writes fields at the end of one growing block of bytes.
class RowWriter
{
public:
    explicit RowWriter(qsizetype rows) { m_bytes.resize(rows * likelyRow); }

    void separator(char c)
    {
        room(1);
        m_bytes.data()[m_size++] = c;
    }

    void text(const QString &value)
    {
        room(value.size() * bytesPerUnit);
        char *const begin = m_bytes.data() + m_size;
        const char *const end = m_encoder.appendToBuffer(begin, value);
        const auto length = static_cast<size_t>(end - begin);
        if (std::memchr(begin, fieldSeparator, length) || std::memchr(begin, rowSeparator, length)) {
            QString harmless = value;
            harmless.replace(QLatin1Char(fieldSeparator), QChar(u'¦'))
                .replace(QLatin1Char(rowSeparator), QChar(u'ˆ'));
            return text(harmless);
        }
        m_size += static_cast<qsizetype>(length);
    }

    void number(std::integral auto value)
    {
        room(longestNumber);
        char *const begin = m_bytes.data() + m_size;
        m_size += std::to_chars(begin, begin + longestNumber, value).ptr - begin;
    }

    // The shortest decimal form that reads back to the same value, with a fractional part or an exponent; the
    // exponent only for very small and very large values.
    void number(double value)
    {
        room(longestNumber + 2);
        char *const begin = m_bytes.data() + m_size;
        const double size = std::abs(value);
        const bool plain = value == 0 || (size >= 1e-4 && size < 1e16);
        char *end = std::to_chars(begin, begin + longestNumber, value,
                                  plain ? std::chars_format::fixed : std::chars_format::scientific)
                        .ptr;
        const auto length = static_cast<size_t>(end - begin);
        if (!std::memchr(begin, '.', length) && !std::memchr(begin, 'e', length)) {
            *end++ = '.';
            *end++ = '0';
        }
        m_size += end - begin;
    }

    // Month/day/two-digit year, without leading zeros in month and day.
    void day(const QDate &value)
    {
        number(value.month());
        separator('/');
        number(value.day());
        separator('/');
        const int year = ((value.year() % 100) + 100) % 100;
        separator(static_cast<char>('0' + year / 10));
        separator(static_cast<char>('0' + year % 10));
    }

    QByteArray taken()
    {
        m_bytes.truncate(m_size);
        return std::move(m_bytes);
    }

private:
    void room(qsizetype size)
    {
        if (m_bytes.size() - m_size < size)
            m_bytes.resize(2 * m_bytes.size() + size);
    }

    QStringEncoder m_encoder{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    QByteArray m_bytes;
    qsizetype m_size = 0;
};

template<typename... Values>
void writeNumbers(RowWriter &row, Values... values)
{
    (..., (row.number(values), row.separator(fieldSeparator)));
}

template<typename... Texts>
void writeTexts(RowWriter &row, const Texts &...texts)
{
    (..., (row.text(texts), row.separator(fieldSeparator)));
}

void writeRow(RowWriter &row, const task &t, const Color &color)
{
    row.day(t.date.date());
    row.separator(fieldSeparator);
    writeTexts(row, t.name, t.desc);
    writeNumbers(row, color.red(), color.green(), color.blue(), color.alpha());
    row.day(t.due.date());
    row.separator(fieldSeparator);
    writeNumbers(row, t.status, t.priority);
    writeTexts(row, t.statusName, t.priorityName, t.key);
    writeTexts(row, t.hidden ? QStringLiteral("true") : QStringLiteral("false"));
    writeNumbers(row, t.startHour, t.startMin, t.endHour, t.endMin);
    writeTexts(row, t.client);
    row.text(t.teamMember);
    row.separator(rowSeparator);
}

} // namespace

QByteArray taskListText(const QList<task> &tasks, bool invertedColors)
{
    RowWriter row(tasks.size());
    for (const task &t : tasks) {
        if (invertedColors)
            trace("Inverted -> Switch to original");
        writeRow(row, t, invertedColors ? t.color.inverted() : t.color);
    }
    return row.taken();
}

} // namespace oblino
