#pragma once

#include <QSize>

class QWidget;

namespace oblino {

/// Sets the least size of a window, in pixels; less where the screen has no room for it, and the window
/// shrinks with it. With large fonts a screen has fewer of these pixels.
void setLeastSize(QWidget &window, const QSize &size);

} // namespace oblino
