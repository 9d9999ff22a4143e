#include <base/typedday.h>

#include <base/typedtext.h>

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace oblino {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int yearsBack = 50;         // of two digits
constexpr qsizetype leastOfMonth = 3; // letters by which a month is known

QString shortDayFormat(const QLocale &locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains(u"yyyy"_s))
        format.replace(u"yy"_s, u"yyyy"_s);
    return format;
}

// The order of 'd', 'M' and 'y' in the locale's short form.
QString fieldOrder(const QLocale &locale)
{
    QString order;
    for (const QChar c : locale.dateFormat(QLocale::ShortFormat)) {
        if (u"dMy"_s.contains(c) && !order.contains(c))
            order += c;
    }
    return order;
}

QString foldedName(const QString &name)
{
    QString folded = foldedTyping(name);
    while (folded.endsWith(u'.'))
        folded.chop(1);
    return folded;
}

enum class Part { Month, Weekday, Nothing, Unknown };

struct Word
{
    Part part = Part::Unknown;
    int number = 0; // of the month or weekday, from 1
};

// The names of one language.
class Names
{
public:
    explicit Names(const QLocale &locale)
    {
        for (const auto form : {QLocale::LongFormat, QLocale::ShortFormat}) {
            for (int month = 1; month <= 12; ++month) {
                enter(locale.monthName(month, form), {Part::Month, month});
                enter(locale.standaloneMonthName(month, form), {Part::Month, month});
            }
            for (int day = 1; day <= 7; ++day) {
                enter(locale.dayName(day, form), {Part::Weekday, day});
                enter(locale.standaloneDayName(day, form), {Part::Weekday, day});
            }
        }
    }

    [[nodiscard]] Word named(const QString &name) const { return m_words.value(name); }

    /// The month whose name alone begins like that.
    [[nodiscard]] Word monthBeginning(const QString &start) const
    {
        Word found;
        for (auto word = m_words.cbegin(); word != m_words.cend(); ++word) {
            if (word->part != Part::Month || !word.key().startsWith(start) || start.size() < leastOfMonth)
                continue;
            if (found.part == Part::Month && found.number != word->number)
                return {};
            found = *word;
        }
        return found;
    }

private:
    void enter(const QString &name, Word word)
    {
        // A month that is written as a number would be taken for any number.
        const QString folded = foldedName(name);
        if (!folded.isEmpty() && !folded.front().isDigit() && !m_words.contains(folded))
            m_words.insert(folded, word);
    }

    QHash<QString, Word> m_words;
};

Word wordOf(const QString &text, const Names &own)
{
    static const QStringList fillers = {u"st"_s, u"nd"_s, u"rd"_s,  u"th"_s, u"of"_s, u"the"_s, u"on"_s,
                                        u"er"_s, u"de"_s, u"den"_s, u"am"_s, u"le"_s, u"el"_s,  u"г"_s};
    static const Names english(QLocale::c());
    for (const Word &word :
         {own.named(text), english.named(text), own.monthBeginning(text), english.monthBeginning(text)}) {
        if (word.part != Part::Unknown)
            return word;
    }
    return {fillers.contains(text) ? Part::Nothing : Part::Unknown};
}

std::optional<QDate> dayOfWord(const QString &text, QDate today)
{
    static const QHash<QString, int> words = {
        {u"today"_s, 0},    {u"heute"_s, 0},    {u"aujourd'hui"_s, 0}, {u"aujourd’hui"_s, 0},
        {u"hoy"_s, 0},      {u"idag"_s, 0},     {u"i dag"_s, 0},       {u"今日"_s, 0},
        {u"tomorrow"_s, 1}, {u"morgen"_s, 1},   {u"demain"_s, 1},      {u"mañana"_s, 1},
        {u"imorgon"_s, 1},  {u"i morgon"_s, 1}, {u"明日"_s, 1},        {u"yesterday"_s, -1},
        {u"gestern"_s, -1}, {u"hier"_s, -1},    {u"ayer"_s, -1},       {u"igår"_s, -1},
        {u"i går"_s, -1},   {u"昨日"_s, -1}};
    if (const auto known = words.constFind(text); known != words.cend())
        return today.addDays(*known);
    static const QRegularExpression distance(QRegularExpression::anchoredPattern(u"([+-]) ?(\\d{1,5})"_s));
    if (const auto match = distance.match(text); match.hasMatch()) {
        const int days = match.capturedView(2).toInt();
        return today.addDays(match.capturedView(1) == u"-" ? -days : days);
    }
    return {};
}

// What a text says of a day.
struct Said
{
    QStringList numbers;
    int month = 0;           // by name; 0 for none
    int weekday = 0;         // the same
    bool hasMarkers = false; // as in 12月25日, always in this order
    bool isRead = true;
};

// Whether the signs in a date of numbers stand as one writes them: one kind of sign, between the numbers, and
// none at the ends but a full stop.
bool areSignsUsual(const QString &text)
{
    static const QRegularExpression usual(
        QRegularExpression::anchoredPattern(u"\\d+(?:(?<sign> ?[./,-] ?| )\\d+(?:\\g{sign}\\d+)?\\.?)?"_s));
    static const QRegularExpression onlyNumbers(QRegularExpression::anchoredPattern(u"[\\d\\s./,-]*"_s));
    return !onlyNumbers.match(text).hasMatch() || usual.match(text).hasMatch();
}

Said takeApart(QString text, const QLocale &locale)
{
    // Between the numbers of a Chinese or Japanese date; the last of the three is also part of weekdays.
    static const QRegularExpression markers(u"(?<=\\d) ?[年月日]"_s);
    static const QRegularExpression token(u"(\\d+)|([^\\d\\s./,،、-]+(?:-[^\\d\\s./,،、-]+)*)"_s);
    const Names own(locale);
    Said said;
    said.hasMarkers = text.contains(markers);
    static const QRegularExpression shortYear(u"\\b\\d{1,3} ?年"_s); // perhaps one of an era
    said.isRead = areSignsUsual(text) && !text.contains(shortYear);
    text.replace(markers, u" "_s);
    for (auto tokens = token.globalMatch(text); tokens.hasNext();) {
        const QRegularExpressionMatch match = tokens.next();
        if (match.hasCaptured(1)) {
            said.numbers += match.captured(1);
            continue;
        }
        const Word word = wordOf(match.captured(2), own);
        int *const place = word.part == Part::Month     ? &said.month
                           : word.part == Part::Weekday ? &said.weekday
                                                        : nullptr;
        if (word.part == Part::Unknown || (place && *place != 0))
            said.isRead = false;
        else if (place)
            *place = word.number;
    }
    return said;
}

std::optional<int> yearOf(const QString &digits, QDate today)
{
    if (digits.size() == 4)
        return digits.toInt();
    if (digits.size() != 2)
        return {};
    const int first = today.year() - yearsBack;
    return first + (digits.toInt() - first % 100 + 100) % 100;
}

// @param fields  the three numbers in the order that `order` tells
QDate dayOfFields(const QStringList &fields, const QString &order, QDate today)
{
    const auto field = [&](QChar name) { return fields.at(order.indexOf(name)); };
    const std::optional<int> year = yearOf(field(u'y'), today);
    if (!year || field(u'M').size() > 2 || field(u'd').size() > 2)
        return {};
    return QDate(*year, field(u'M').toInt(), field(u'd').toInt());
}

QDate dayOfThreeNumbers(const QStringList &numbers, const QLocale &locale, QDate today)
{
    const QString order = fieldOrder(locale);
    if (numbers.first().size() == 4)
        return dayOfFields(numbers, u"yMd"_s, today);
    if (order.front() != u'y' || numbers.last().size() != 4)
        return dayOfFields(numbers, order, today);
    // Where the year comes first, no order is usual with the year last.
    const QDate dayFirst = dayOfFields(numbers, u"dMy"_s, today);
    const QDate monthFirst = dayOfFields(numbers, u"Mdy"_s, today);
    if (dayFirst.isValid() && monthFirst.isValid() && dayFirst != monthFirst)
        return {};
    return dayFirst.isValid() ? dayFirst : monthFirst;
}

// Day, month and year in digits without anything between them.
QDate dayOfOneNumber(const QString &number, const QLocale &locale, QDate today)
{
    const auto split = [&](const QString &order, qsizetype yearDigits) {
        QStringList fields;
        qsizetype at = 0;
        for (const QChar name : order) {
            const qsizetype digits = name == u'y' ? yearDigits : 2;
            fields += number.mid(at, digits);
            at += digits;
        }
        return dayOfFields(fields, order, today);
    };
    if (number.size() == 6)
        return split(fieldOrder(locale), 2);
    if (number.size() != 8)
        return {};
    const QDate iso = split(u"yMd"_s, 4);
    const QDate own = split(fieldOrder(locale), 4);
    if (iso.isValid() && own.isValid() && iso != own)
        return {};
    return iso.isValid() ? iso : own;
}

QDate dayWithoutYear(int month, int day, QDate today)
{
    const QDate thisYear(today.year(), month, day);
    if (thisYear.isValid() && thisYear >= today.addMonths(-6))
        return thisYear;
    const QDate nextYear(today.year() + 1, month, day);
    return nextYear.isValid() ? nextYear : thisYear;
}

QDate dayOfNamedMonth(const Said &said, QDate today)
{
    QStringList numbers = said.numbers;
    if (numbers.size() == 1 && numbers.first().size() <= 2)
        return dayWithoutYear(said.month, numbers.first().toInt(), today);
    if (numbers.size() != 2)
        return {};
    if (numbers.first().size() == 4)
        numbers.swapItemsAt(0, 1);
    numbers.insert(1, QString::number(said.month));
    return dayOfFields(numbers, u"dMy"_s, today);
}

QDate dayOf(const Said &said, const QLocale &locale, QDate today)
{
    if (said.month != 0)
        return dayOfNamedMonth(said, today);
    switch (said.numbers.size()) {
    case 0:
        return said.weekday == 0 ? QDate() : today.addDays((said.weekday - today.dayOfWeek() + 6) % 7 + 1);
    case 1:
        return dayOfOneNumber(said.numbers.first(), locale, today);
    case 2: {
        const QString order = said.hasMarkers ? u"yMd"_s : fieldOrder(locale);
        const bool dayFirst = order.indexOf(u'd') < order.indexOf(u'M');
        const QString &day = said.numbers.at(dayFirst ? 0 : 1);
        const QString &month = said.numbers.at(dayFirst ? 1 : 0);
        return day.size() > 2 || month.size() > 2 ? QDate()
                                                  : dayWithoutYear(month.toInt(), day.toInt(), today);
    }
    case 3:
        return dayOfThreeNumbers(said.numbers, locale, today);
    default:
        return {};
    }
}

} // namespace

std::optional<QDate> readDay(const QString &text, const QLocale &locale, QDate today)
{
    const QString typed = foldedTyping(text);
    for (const QString &format : {shortDayFormat(locale), locale.dateFormat(QLocale::LongFormat)}) {
        if (const QDate day = locale.toDate(text, format);
            day.isValid() && foldedTyping(locale.toString(day, format)) == typed)
            return day;
    }
    if (const auto day = dayOfWord(typed, today))
        return day;
    const Said said = takeApart(typed, locale);
    const QDate day = said.isRead ? dayOf(said, locale, today) : QDate();
    if (!day.isValid() || (said.weekday != 0 && day.dayOfWeek() != said.weekday))
        return {};
    return day;
}

QString shortDay(QDate day, const QLocale &locale)
{
    return locale.toString(day, shortDayFormat(locale));
}

} // namespace oblino
