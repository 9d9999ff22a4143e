#pragma once

namespace oblino {

/// A colour: red, green, blue and alpha, each 0..1. Inverting keeps what rounding would lose, so that
/// inverting twice gives back exactly the numbers of the start.
class Color
{
public:
    /// Opaque white.
    constexpr Color() = default;
    constexpr Color(double red, double green, double blue, double alpha)
        : m_red(red)
        , m_green(green)
        , m_blue(blue)
        , m_alpha(alpha)
    {
    }

    [[nodiscard]] constexpr double red() const { return m_red.value; }
    [[nodiscard]] constexpr double green() const { return m_green.value; }
    [[nodiscard]] constexpr double blue() const { return m_blue.value; }
    [[nodiscard]] constexpr double alpha() const { return m_alpha; }

    /// One minus each of red, green and blue; alpha stays.
    [[nodiscard]] constexpr Color inverted() const
    {
        Color other;
        other.m_red = m_red.inverted();
        other.m_green = m_green.inverted();
        other.m_blue = m_blue.inverted();
        other.m_alpha = m_alpha;
        return other;
    }

    friend constexpr bool operator==(const Color &a, const Color &b)
    {
        return a.red() == b.red() && a.green() == b.green() && a.blue() == b.blue() && a.alpha() == b.alpha();
    }

private:
    // 1 - (1 - x) is not x for most x below a half, so the complement stays beside the value.
    struct Component
    {
        constexpr Component(double number)
            : value(number)
            , complement(1 - number)
        {
        }
        constexpr Component(double number, double other)
            : value(number)
            , complement(other)
        {
        }
        [[nodiscard]] constexpr Component inverted() const { return {complement, value}; }

        double value;
        double complement;
    };

    Component m_red = 1.0;
    Component m_green = 1.0;
    Component m_blue = 1.0;
    double m_alpha = 1.0;
};

} // namespace oblino
