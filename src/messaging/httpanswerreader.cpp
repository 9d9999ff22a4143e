#include <messaging/httpanswerreader.h>

#include <QByteArrayList>

#include <algorithm>

namespace oblino {

namespace {

constexpr qsizetype longestHead = 65'536; // bytes; also of a chunk's first line and of a trailer

// Negative where it is none.
qsizetype decimal(const QByteArray &text)
{
    const bool isDigits =
        std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= '0' && c <= '9'; });
    bool isNumber = false;
    const qsizetype number = text.toLongLong(&isNumber);
    return isDigits && isNumber ? number : -1;
}

// The elements of a header's value, in lower case. Several headers of one name count as one (RFC 9110, 5.3).
QByteArrayList values(const QByteArrayList &lines, const QByteArray &name)
{
    QByteArrayList found;
    for (const QByteArray &line : lines) {
        if (line.left(name.size() + 1).toLower() != name + ':')
            continue;
        for (const QByteArray &value : line.mid(name.size() + 1).toLower().split(','))
            found += value.trimmed();
    }
    return found;
}

} // namespace

HttpAnswerReader::State HttpAnswerReader::add(const QByteArray &bytes)
{
    m_unread += bytes;
    while (m_state == State::Reading && takePart()) {
    }
    return m_state;
}

HttpAnswerReader::State HttpAnswerReader::end()
{
    if (m_state == State::Reading)
        m_state = m_part == Part::UntilEnd ? State::Whole : State::Broken;
    return m_state;
}

// False where more must arrive first.
bool HttpAnswerReader::takePart()
{
    switch (m_part) {
    case Part::Head:
        if (const auto head = takeUpTo("\r\n\r\n"))
            return readHead(*head), true;
        return false;
    case Part::ChunkSize:
        if (const auto line = takeUpTo("\r\n"))
            return readChunkSize(*line), true;
        return false;
    case Part::ChunkEnd:
        if (const auto line = takeUpTo("\r\n")) {
            m_part = Part::ChunkSize;
            m_state = line->isEmpty() ? m_state : State::Broken;
            return true;
        }
        return false;
    case Part::Trailer:
        if (const auto line = takeUpTo("\r\n")) {
            m_state = line->isEmpty() ? State::Whole : m_state;
            return true;
        }
        return false;
    default:
        return takeCounted();
    }
}

std::optional<QByteArray> HttpAnswerReader::takeUpTo(QByteArrayView separator)
{
    const qsizetype end = m_unread.indexOf(separator);
    if (end < 0 || end > longestHead) {
        if (m_unread.size() > longestHead)
            m_state = State::Broken;
        return {};
    }
    const QByteArray taken = m_unread.left(end);
    m_unread.remove(0, end + separator.size());
    return taken;
}

void HttpAnswerReader::readHead(const QByteArray &head)
{
    constexpr qsizetype statusAt = 9; // after "HTTP/1.1 "
    constexpr qsizetype statusEnd = 12;
    QByteArrayList lines = head.split('\n');
    const QByteArray line = lines.takeFirst().trimmed();
    const qsizetype status = decimal(line.mid(statusAt, statusEnd - statusAt));
    if (line.size() < statusEnd || !line.startsWith("HTTP/1.") || line[statusAt - 1] != ' ' || status < 100 ||
        (line.size() > statusEnd && line[statusEnd] != ' ')) {
        m_state = State::Broken;
        return;
    }
    m_status = static_cast<int>(status);
    m_keeps = !line.startsWith("HTTP/1.0");
    if (m_status == 101) // to a protocol that nobody asked for
        m_state = State::Broken;
    else if (m_status >= 200) // what is below comes before the answer
        readHeaders(lines);
}

void HttpAnswerReader::readHeaders(const QByteArrayList &lines)
{
    m_keeps = m_keeps && !values(lines, "connection").contains("close");
    const QByteArrayList encodings = values(lines, "transfer-encoding");
    const QByteArrayList lengths = values(lines, "content-length");
    const bool isOne = !lengths.isEmpty() && lengths.count(lengths[0]) == lengths.size();
    const qsizetype length = isOne ? decimal(lengths[0]) : -1;
    if (m_status == 204 || m_status == 304)
        m_state = State::Whole;
    else if (!encodings.isEmpty())
        expect(encodings.constLast() == "chunked" ? Part::ChunkSize : Part::UntilEnd, 0);
    else if (length >= 0)
        expect(Part::Counted, length);
    else if (lengths.isEmpty())
        expect(Part::UntilEnd, 0);
    else
        m_state = State::Broken;
}

void HttpAnswerReader::readChunkSize(const QByteArray &line)
{
    bool isNumber = false;
    const qint64 size = line.split(';')[0].trimmed().toLongLong(&isNumber, 16);
    if (!isNumber || size < 0)
        m_state = State::Broken;
    else
        expect(size > 0 ? Part::Chunk : Part::Trailer, size);
}

void HttpAnswerReader::expect(Part part, qsizetype bytes)
{
    m_part = part;
    m_left = bytes;
    m_keeps = m_keeps && part != Part::UntilEnd;
    if (bytes > m_longest - m_body.size())
        m_state = State::TooLong;
    else if (part == Part::Counted && bytes == 0)
        m_state = State::Whole;
}

bool HttpAnswerReader::takeCounted()
{
    const qsizetype taken = m_part == Part::UntilEnd ? m_unread.size() : std::min(m_left, m_unread.size());
    if (taken == 0)
        return false;
    m_body += m_unread.left(taken);
    m_unread.remove(0, taken);
    m_left -= taken;
    if (m_body.size() > m_longest)
        m_state = State::TooLong;
    else if (m_part == Part::Counted && m_left == 0)
        m_state = State::Whole;
    else if (m_part == Part::Chunk && m_left == 0)
        m_part = Part::ChunkEnd;
    return true;
}

} // namespace oblino
