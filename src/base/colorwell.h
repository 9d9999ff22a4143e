#pragma once

#include <base/color.h>

namespace oblino {

/// A control that shows a colour and lets the user pick one, as far as the model needs it.
class ColorWell
{
public:
    ColorWell() = default;
    ColorWell(const ColorWell &) = delete;
    ColorWell &operator=(const ColorWell &) = delete;
    virtual ~ColorWell() = default;

    [[nodiscard]] virtual Color color() const = 0;
    virtual void setColor(const Color &color) = 0;
};

} // namespace oblino
