#include <files/versionname.h>

#include <QLatin1StringView>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array<std::pair<VersionReason, const char *>, 10> words = {{
    {VersionReason::Daily, "daily"},
    {VersionReason::OtherProgram, "changed"},
    {VersionReason::Unread, "unread"},
    {VersionReason::Interrupted, "interrupted"},
    {VersionReason::Damaged, "damaged"},
    {VersionReason::Quarantined, "aside"},
    {VersionReason::Conflict, "conflict"},
    {VersionReason::Replaced, "replaced"},
    {VersionReason::Restored, "restored"},
    {VersionReason::Rescued, "rescued"},
}};

QString wordFor(VersionReason reason)
{
    const auto *found = std::ranges::find(words, reason, &std::pair<VersionReason, const char *>::first);
    return QString::fromLatin1(found->second);
}

// A later release may know more words: what it kept is to be found, and erased, all the same.
VersionReason reasonFor(const QString &word)
{
    const auto *found = std::ranges::find_if(
        words, [&](const auto &entry) { return word == QLatin1StringView(entry.second); });
    return found != words.end() ? found->first : VersionReason::OtherProgram;
}

// Invalid where there is no such day. A time that this zone does not have counts as the start of its day.
QDateTime timeIn(const QString &text)
{
    const QDate day = QDate::fromString(text.left(10), Qt::ISODate);
    const QDateTime time(day, QTime::fromString(text.mid(11), u"HH.mm.ss"_s));
    return time.isValid() || !day.isValid() ? time : day.startOfDay();
}

} // namespace

QString VersionName::fileName(const QString &name) const
{
    const QString counter = number > 1 ? u" (%1)"_s.arg(number) : QString();
    return time.toString(u"yyyy-MM-dd HH.mm.ss"_s) + counter + u" ["_s + wordFor(reason) + u"] "_s +
           shortenedName(name);
}

std::optional<VersionName> VersionName::parse(const QString &fileName, const QString &name)
{
    static const QRegularExpression start(
        u"^(\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d)(?: \\((\\d+)\\))? \\[([a-z]+)\\] "_s);
    const QRegularExpressionMatch match = start.match(fileName);
    const QString rest = fileName.sliced(match.capturedLength());
    const QDateTime time = timeIn(match.captured(1));
    if (!time.isValid() || (rest != shortenedName(name) && rest != shortenedName(recordName(name))))
        return std::nullopt;
    return VersionName{time, std::max(1, match.captured(2).toInt()), reasonFor(match.captured(3))};
}

QString shortenedName(const QString &name)
{
    constexpr int longest = 60;
    return name.right(longest);
}

QString recordName(const QString &name)
{
    return name + u".journal"_s;
}

} // namespace oblino
