#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <utility>

namespace oblino {

/// Remembers what texts stand for, for a reader that meets few different ones again and again. It has room
/// for a fixed number of them; a text that takes the room of another drives that one out.
template<typename Value>
class TextMemo
{
public:
    /// What the text stands for: `make(text)`, unless that is remembered.
    template<typename Make>
    [[nodiscard]] const Value &value(QStringView text, const Make &make)
    {
        Entry &entry = m_entries[place(text)];
        if (!entry.known || entry.text != text)
            entry = {true, text.toString(), make(text)};
        return entry.value;
    }

private:
    struct Entry
    {
        bool known = false;
        QString text;
        Value value = {};
    };

    static constexpr size_t room = 256;

    // Quicker than qHash() for texts as short as these.
    [[nodiscard]] static size_t place(QStringView text)
    {
        size_t hash = 0;
        for (const QChar unit : text)
            hash = hash * 31 + unit.unicode();
        return hash % room;
    }

    std::array<Entry, room> m_entries;
};

} // namespace oblino
