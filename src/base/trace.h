#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QLocale>
#include <QString>

#include <concepts>
#include <type_traits>

namespace oblino {

/// The program's diagnostic lines on standard output. Lines are gathered in a buffer and written when the
/// event loop is idle, at exit, and when the buffer is full. Nothing is built at all where the output goes
/// nowhere (closed, or the null device) or into the system's log, which would keep the texts of tasks. A
/// reader that does not keep up loses lines; it never holds the program up. A terminal is shown pictures of
/// control characters in place of them. Safe to use from any thread.
class Trace
{
public:
    /// Whether lines are wanted. Cheap enough for hot paths.
    [[nodiscard]] static bool enabled();

    /// Adds one whole line, without its line feed.
    static void writeLine(const QByteArray &line);

    /// Writes out what is buffered, as far as the reader takes it without waiting.
    static void flush();

    /// From now on flushes whenever the main thread's event loop is about to wait.
    static void flushWhenIdle();

    /// Sends the lines to another file descriptor, which stays the caller's; buffered lines go out first.
    static void setDescriptor(int descriptor);
};

/// Appends the trace form of a value to a line. Types of other rooms add overloads beside the type.
inline void appendTrace(QByteArray &line, bool value)
{
    line += value ? "true" : "false";
}
inline void appendTrace(QByteArray &line, const char *value)
{
    line += value;
}
inline void appendTrace(QByteArray &line, const QByteArray &value)
{
    line += value;
}
inline void appendTrace(QByteArray &line, QStringView value)
{
    line += value.toUtf8();
}
inline void appendTrace(QByteArray &line, const QDateTime &value)
{
    line += value.toString(Qt::ISODate).toUtf8();
}
inline void appendTrace(QByteArray &line, double value)
{
    line += QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

template<std::integral Integer>
requires(!std::same_as<Integer, bool>) void appendTrace(QByteArray &line, Integer value)
{
    line += QByteArray::number(qint64(value));
}

template<typename List>
requires requires(const List &list)
{
    list.size();
    list.constBegin();
} &&(!std::convertible_to<const List &, QStringView>)void appendTrace(QByteArray &line, const List &list)
{
    line += '[';
    const char *separator = "";
    for (const auto &element : list) {
        line += separator;
        appendTrace(line, element);
        separator = ", ";
    }
    line += ']';
}

/// Writes one line: the values separated by single blanks. A value may be a function without arguments, which
/// is then called only when the line is wanted.
template<typename... Values>
void trace(const Values &...values)
{
    if (!Trace::enabled())
        return;
    QByteArray line; // not one for all lines: what is thread_local is gone when the last ones are written
    line.reserve(128);
    auto append = [&line, first = true](const auto &value) mutable {
        if (!first)
            line += ' ';
        first = false;
        if constexpr (std::invocable<decltype(value)>)
            appendTrace(line, value());
        else
            appendTrace(line, value);
    };
    (append(values), ...);
    Trace::writeLine(line);
}

} // namespace oblino
