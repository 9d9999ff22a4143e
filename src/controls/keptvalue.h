#pragma once

#include <optional>
#include <utility>

namespace oblino {

/// A value that was put into a control which perhaps cannot show all of it. As long as the control shows what
/// it made of the value, the value itself is what it holds.
template<typename Value, typename Shown = Value>
class KeptValue
{
public:
    void set(Value value, Shown shown)
    {
        m_value = std::move(value);
        m_shown = std::move(shown);
    }

    /// @param shown    what the control shows now
    /// @param entered  what that stands for
    [[nodiscard]] Value value(const Shown &shown, const Value &entered) const
    {
        return shown == m_shown ? m_value : entered;
    }

private:
    Value m_value = {};
    std::optional<Shown> m_shown; // none before a value was set
};

} // namespace oblino
