#include <platform/journal.h>

#include <QByteArrayView>
#include <QtEndian>

#include <openssl/evp.h>

namespace oblino {

namespace {

constexpr QByteArrayView magic("oblino journal\n");
constexpr quint32 version = 1;
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

    [[nodiscard]] bool areUsedUp() const { return m_complete && m_rest.isEmpty(); }

private:
    QByteArrayView m_rest;
    bool m_complete = true;
};

// Where every journal begins. @return nothing where this is none
QByteArrayView takePath(Pieces &pieces)
{
    if (pieces.take(static_cast<quint64>(magic.size())) != magic || pieces.takeNumber<quint32>() != version)
        return {};
    return pieces.take(pieces.takeNumber<quint32>());
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

QByteArray Journal::encoded() const
{
    QByteArray bytes;
    bytes.reserve(magic.size() + path.size() + text.size() + 3 * hashSize + 16);
    bytes.append(magic);
    appendNumber(bytes, version);
    appendNumber(bytes, static_cast<quint32>(path.size()));
    bytes.append(path);
    bytes.append(oldHash.leftJustified(hashSize, '\0', true));
    bytes.append(newHash);
    appendNumber(bytes, static_cast<quint64>(text.size()));
    bytes.append(text);
    bytes.append(sha256(bytes));
    return bytes;
}

std::optional<Journal> Journal::decoded(const QByteArray &bytes)
{
    Pieces pieces(bytes);
    const QByteArrayView path = takePath(pieces);
    const QByteArrayView oldHash = pieces.take(hashSize);
    const QByteArrayView newHash = pieces.take(hashSize);
    const QByteArrayView text = pieces.take(pieces.takeNumber<quint64>());
    const QByteArrayView checksum = pieces.take(hashSize);
    if (path.isEmpty() || !pieces.areUsedUp())
        return std::nullopt;
    const QByteArrayView covered(bytes.constData(), bytes.size() - hashSize);
    if (sha256(covered) != checksum)
        return std::nullopt;
    const bool oldIsKnown = oldHash != QByteArray(hashSize, '\0');
    return Journal{path.toByteArray(), oldIsKnown ? oldHash.toByteArray() : QByteArray(),
                   newHash.toByteArray(), text.toByteArray()};
}

QByteArray Journal::pathIn(const QByteArray &bytes)
{
    Pieces pieces(bytes);
    return takePath(pieces).toByteArray();
}

} // namespace oblino
