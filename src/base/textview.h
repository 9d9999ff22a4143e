#pragma once

#include <base/color.h>

#include <QString>

namespace oblino {

/// A control that shows a text of several lines in one colour, as far as the model needs it.
class TextView
{
public:
    TextView() = default;
    TextView(const TextView &) = delete;
    TextView &operator=(const TextView &) = delete;
    virtual ~TextView() = default;

    [[nodiscard]] virtual QString text() const = 0;
    virtual void setText(const QString &text) = 0;
    [[nodiscard]] virtual Color textColor() const = 0;
    virtual void setTextColor(const Color &color) = 0;
};

} // namespace oblino
