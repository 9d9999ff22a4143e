#include <files/journal.h>

#include <files/sha256.h>
#include <files/tornfile.h>

#include <QDataStream>
#include <QIODevice>

#include <algorithm>

namespace oblino {

namespace {

constexpr quint32 magic = 0x4f424c4a; // "OBLJ"
constexpr quint16 version = 3;

/// The old text as what is left of it without the start and the end that the new text shares.
struct Difference
{
    qsizetype start = 0;
    qsizetype end = 0;
    QByteArrayView middle;
};

Difference differenceOf(QByteArrayView old, QByteArrayView text)
{
    const auto start = std::ranges::mismatch(old, text).in1 - old.begin();
    const QByteArrayView oldRest = old.sliced(start);
    const QByteArrayView rest = text.sliced(start);
    const auto end =
        std::mismatch(oldRest.rbegin(), oldRest.rend(), rest.rbegin(), rest.rend()).first - oldRest.rbegin();
    return {start, end, oldRest.chopped(end)};
}

} // namespace

Journal::State Journal::stateOf(QByteArrayView found) const
{
    if (found == text)
        return State::New;
    if (old && found == *old)
        return State::Old;
    const QByteArray before = old.value_or(QByteArray());
    if (!isTornBetween(found, before, text))
        return State::Other;
    const bool isShort = found.size() < std::min(before.size(), text.size());
    return isShort || before.startsWith(found) ? State::CutShort : State::Torn;
}

QByteArray Journal::encoded() const
{
    const Difference difference = old ? differenceOf(*old, text) : Difference();
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << magic << version << path << old.has_value() << qint64(difference.start)
           << qint64(difference.end) << difference.middle.toByteArray() << text;
    return bytes + sha256(bytes);
}

std::optional<Journal> Journal::decoded(const QByteArray &bytes)
{
    const QByteArray content = bytes.chopped(std::min(sha256Size, bytes.size()));
    if (!bytes.endsWith(sha256(content)))
        return std::nullopt;
    QDataStream stream(content);
    stream.setVersion(QDataStream::Qt_6_4);
    quint32 foundMagic = 0;
    quint16 foundVersion = 0;
    stream >> foundMagic >> foundVersion;
    if (foundMagic != magic || foundVersion != version)
        return std::nullopt;
    Journal journal;
    bool oldIsKnown = false;
    qint64 start = 0;
    qint64 end = 0;
    QByteArray middle;
    stream >> journal.path >> oldIsKnown >> start >> end >> middle >> journal.text;
    if (oldIsKnown)
        journal.old = journal.text.first(start) + middle + journal.text.last(end);
    return journal;
}

} // namespace oblino
