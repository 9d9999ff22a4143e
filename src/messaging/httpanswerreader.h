#pragma once

#include <QByteArray>

#include <optional>

namespace oblino {

/// Reads the answer to one POST from the bytes of a connection, as HTTP/1.1 frames it (RFC 9112).
class HttpAnswerReader
{
public:
    enum class State {
        Reading,
        Whole,
        TooLong, ///< its body is longer than the limit
        Broken   ///< it is no HTTP, or ended too early
    };

    /// @param longest  bytes in a body
    explicit HttpAnswerReader(qsizetype longest)
        : m_longest(longest)
    {
    }

    /// Takes what has arrived. Once the state is another than Reading, it stays.
    State add(const QByteArray &bytes);
    /// The server has ended the connection.
    State end();

    [[nodiscard]] int status() const { return m_status; } ///< 0 before it is known
    [[nodiscard]] const QByteArray &body() const { return m_body; }
    /// Whether the server goes on with the connection after this whole answer.
    [[nodiscard]] bool keepsConnection() const { return m_keeps && m_unread.isEmpty(); }

private:
    enum class Part { Head, Counted, ChunkSize, Chunk, ChunkEnd, Trailer, UntilEnd };

    bool takePart();
    std::optional<QByteArray> takeUpTo(QByteArrayView separator);
    void readHead(const QByteArray &head);
    void readHeaders(const QByteArrayList &lines);
    void readChunkSize(const QByteArray &line);
    bool takeCounted();
    void expect(Part part, qsizetype bytes);

    qsizetype m_longest;
    State m_state = State::Reading;
    Part m_part = Part::Head;
    qsizetype m_left = 0; // bytes of the part
    QByteArray m_unread;
    QByteArray m_body;
    int m_status = 0;
    bool m_keeps = false;
};

} // namespace oblino
