#include <messaging/smsmessage.h>

#include <unicode/ubrk.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace oblino {

namespace {

constexpr qint64 longestDelay = 4'294'967; // milliseconds, the most in 32 bits of microseconds
constexpr quint16 httpsPort = 443;

bool canBeCarried(const QString &text, QLatin1String alsoAllowed)
{
    constexpr QLatin1String allowed("-._~!$&'()*+,;=");
    return std::all_of(text.cbegin(), text.cend(), [=](QChar c) {
        const bool plain = c < QChar(0x80) && c.isLetterOrNumber();
        return plain || allowed.contains(c) || alsoAllowed.contains(c);
    });
}

using Characters = std::unique_ptr<UBreakIterator, decltype([](UBreakIterator *open) { ubrk_close(open); })>;

// Qt 6.4's QTextBoundaryFinder splits a flag that follows an emoji, and in a text with Indic or Southeast
// Asian letters it goes on by UTF-16 unit. The text outlives the iterator.
Characters charactersOf(QStringView text)
{
    constexpr qsizetype longest = std::numeric_limits<int32_t>::max();
    UErrorCode error = U_ZERO_ERROR;
    Characters characters(ubrk_open(UBRK_CHARACTER, "", text.utf16(),
                                    static_cast<int32_t>(std::min(text.size(), longest)), &error));
    if (U_FAILURE(error))
        qFatal("no rules for characters: %s", u_errorName(error));
    return characters;
}

} // namespace

qsizetype characterCount(const QString &text)
{
    const Characters characters = charactersOf(text);
    qsizetype count = 0;
    while (ubrk_next(characters.get()) != UBRK_DONE)
        ++count;
    return count;
}

QString smsText(const QString &message)
{
    if (message.size() <= longestSms)
        return message;
    const Characters characters = charactersOf(message);
    for (qsizetype i = 0; i < longestSms; ++i) {
        if (ubrk_next(characters.get()) == UBRK_DONE)
            return message;
    }
    return message.left(ubrk_current(characters.get()));
}

QByteArray smsForm(const QString &from, const QString &to, const QString &text)
{
    return "From=" + QUrl::toPercentEncoding(from) + "&To=" + QUrl::toPercentEncoding(to) +
           "&Body=" + QUrl::toPercentEncoding(text);
}

std::optional<QUrl> smsUrl(const QString &host, quint16 port, const QString &sid, const QString &secret)
{
    const bool isDots = sid == QLatin1String(".") || sid == QLatin1String("..");
    if (isDots || !canBeCarried(sid, {}) || !canBeCarried(secret, QLatin1String(":")))
        return std::nullopt;
    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setHost(host);
    if (port != httpsPort)
        url.setPort(port);
    url.setPath(QStringLiteral("/2010-04-01/Accounts/") + sid + QStringLiteral("/SMS/Messages"));
    return url;
}

bool isSmsError(const QString &response)
{
    return response.contains(QLatin1String("Error")) || response.contains(QLatin1String("error"));
}

std::chrono::microseconds smsPause(qint64 delay)
{
    return std::chrono::milliseconds(std::clamp<qint64>(delay, 0, longestDelay));
}

} // namespace oblino
