#pragma once

#include <QString>

namespace oblino {

/// The desktop's general pasteboard.
class Pasteboard
{
public:
    /// Clears it and puts plain text on it.
    static void setText(const QString &text);
};

} // namespace oblino
