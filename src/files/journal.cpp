#include <files/journal.h>

#include <files/tornfile.h>

#include <QtEndian>

#include <algorithm>

#include <openssl/evp.h>

namespace oblino {

namespace {

constexpr QByteArrayView magic("oblino journal\n");
constexpr quint32 version = 2; // the first one held a hash in place of the old text
constexpr qsizetype hashSize = 32;

template<typename Number>
void appendNumber(QByteArray &bytes, Number number)
{
    const Number stored = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

/// Hands out the front of some bytes piece by piece; once they do not suffice, nothing but empty pieces.
class Pieces
{
public:
    explicit Pieces(QByteArrayView bytes)
        : m_rest(bytes)
    {
    }

    QByteArrayView take(quint64 size)
    {
        m_complete = m_complete && size <= static_cast<quint64>(m_rest.size());
        if (!m_complete)
            return {};
        const QByteArrayView piece = m_rest.first(static_cast<qsizetype>(size));
        m_rest = m_rest.sliced(piece.size());
        return piece;
    }

    template<typename Number>
    Number takeNumber()
    {
        const QByteArrayView piece = take(sizeof(Number));
        return m_complete ? qFromBigEndian<Number>(piece.data()) : Number{};
    }

    [[nodiscard]] bool atEnd() const { return m_complete && m_rest.isEmpty(); }

private:
    QByteArrayView m_rest;
    bool m_complete = true;
};

// Where every journal begins. @return nothing where this is none
QByteArrayView takePath(Pieces &pieces, quint32 &foundVersion)
{
    if (pieces.take(static_cast<quint64>(magic.size())) != magic)
        return {};
    foundVersion = pieces.takeNumber<quint32>();
    return pieces.take(pieces.takeNumber<quint32>());
}

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

// Qt's own SHA-256 takes some ten times as long, which is felt when a large list is saved.
QByteArray sha256(QByteArrayView bytes)
{
    QByteArray hash(hashSize, Qt::Uninitialized);
    const bool done =
        EVP_Digest(bytes.data(), static_cast<size_t>(bytes.size()),
                   reinterpret_cast<unsigned char *>(hash.data()), nullptr, EVP_sha256(), nullptr);
    Q_ASSERT(done);
    return done ? hash : QByteArray();
}

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
    bytes.reserve(magic.size() + path.size() + difference.middle.size() + text.size() + hashSize + 48);
    bytes.append(magic);
    appendNumber(bytes, version);
    appendNumber(bytes, static_cast<quint32>(path.size()));
    bytes.append(path);
    appendNumber(bytes, quint32{old ? 1U : 0U});
    for (const qsizetype size : {difference.start, difference.end, difference.middle.size()})
        appendNumber(bytes, static_cast<quint64>(size));
    bytes.append(difference.middle);
    appendNumber(bytes, static_cast<quint64>(text.size()));
    bytes.append(text);
    bytes.append(sha256(bytes));
    return bytes;
}

std::optional<Journal> Journal::decoded(const QByteArray &bytes)
{
    Pieces pieces(bytes);
    quint32 foundVersion = 0;
    const QByteArrayView path = takePath(pieces, foundVersion);
    const bool oldIsKnown = pieces.takeNumber<quint32>() != 0;
    const auto start = pieces.takeNumber<quint64>();
    const auto end = pieces.takeNumber<quint64>();
    const QByteArrayView middle = pieces.take(pieces.takeNumber<quint64>());
    const QByteArrayView text = pieces.take(pieces.takeNumber<quint64>());
    const QByteArrayView checksum = pieces.take(hashSize);
    if (foundVersion != version || path.isEmpty() || !pieces.atEnd())
        return std::nullopt;
    const QByteArrayView covered(bytes.constData(), bytes.size() - hashSize);
    const auto size = static_cast<quint64>(text.size());
    if (sha256(covered) != checksum || start > size || end > size - start)
        return std::nullopt;
    Journal journal{path.toByteArray(), std::nullopt, text.toByteArray()};
    if (oldIsKnown) {
        journal.old = journal.text.first(static_cast<qsizetype>(start)) + middle.toByteArray() +
                      journal.text.last(static_cast<qsizetype>(end));
    }
    return journal;
}

QByteArray Journal::pathIn(const QByteArray &bytes)
{
    Pieces pieces(bytes);
    quint32 foundVersion = 0;
    return takePath(pieces, foundVersion).toByteArray();
}

} // namespace oblino
