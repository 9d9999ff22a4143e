#pragma once

#include <QString>

class QImage;

namespace oblino {

/// The desktop's general pasteboard.
class Pasteboard
{
public:
    /// Clears it and puts plain text on it.
    static void setText(const QString &text);

    /// Clears it and puts both on it; a program that is pasted into takes what it can use.
    static void setTextAndImage(const QString &text, const QImage &image);
};

} // namespace oblino
