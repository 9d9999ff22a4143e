#include <base/typedtime.h>

#include <base/typedtext.h>

#include <QRegularExpression>

#include <array>

namespace oblino {

namespace {

using namespace Qt::Literals::StringLiterals;

enum class HalfOfDay { None, Morning, Afternoon };

// Takes a word for one half of the day from either end of the text; after a digit it may stand without a
// blank.
bool takeWord(QString &text, const QString &word)
{
    if (word.isEmpty())
        return false;
    if (text.endsWith(word))
        text.chop(word.size());
    else if (text.startsWith(word))
        text.remove(0, word.size());
    else
        return false;
    text = text.trimmed();
    return true;
}

HalfOfDay takeHalfOfDay(QString &text, const QLocale &locale)
{
    const std::array morning = {foldedTyping(locale.amText()), u"a.m."_s, u"am"_s, u"a"_s};
    const std::array afternoon = {foldedTyping(locale.pmText()), u"p.m."_s, u"pm"_s, u"p"_s};
    for (const QString &word : morning) {
        if (takeWord(text, word))
            return HalfOfDay::Morning;
    }
    for (const QString &word : afternoon) {
        if (takeWord(text, word))
            return HalfOfDay::Afternoon;
    }
    return HalfOfDay::None;
}

QString shortTimeFormat(const QLocale &locale)
{
    // The letter of the part of the day, as in Chinese, is unknown to QLocale.
    return locale.timeFormat(QLocale::ShortFormat).remove(u":ss"_s).replace(u"B"_s, u"AP "_s);
}

} // namespace

std::optional<QTime> readTime(const QString &text, const QLocale &locale)
{
    if (const QTime time = locale.toTime(text, shortTimeFormat(locale));
        time.isValid() && shortTime(time, locale) == text)
        return time;
    QString rest = foldedTyping(text);
    const HalfOfDay half = takeHalfOfDay(rest, locale);
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(u"(?:kl\\.? )?(\\d{1,2})"
                                            "(?: ?(?:[:.]|h|uhr|時) ?(\\d\\d)|(\\d\\d)| ?(?:h|uhr|時))?"
                                            "(?::00)?(?: ?(?:uhr|分))?"_s));
    const QRegularExpressionMatch match = form.match(rest);
    if (!match.hasMatch())
        return {};
    int hour = match.capturedView(1).toInt();
    const int minute = match.capturedView(2).toInt() + match.capturedView(3).toInt(); // one of them is empty
    if (half != HalfOfDay::None) {
        if (hour > 12) // 0 is usual in Japanese
            return {};
        hour = hour % 12 + (half == HalfOfDay::Afternoon ? 12 : 0);
    }
    const QTime time(hour, minute);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

QString shortTime(QTime time, const QLocale &locale)
{
    return locale.toString(time, shortTimeFormat(locale));
}

} // namespace oblino
