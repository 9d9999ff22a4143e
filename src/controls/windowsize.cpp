#include <controls/windowsize.h>

#include <QScreen>
#include <QWidget>

namespace oblino {

void setLeastSize(QWidget &window, const QSize &size)
{
    const QSize room = window.screen()->availableSize();
    window.setMinimumSize(size.boundedTo(room));
    window.resize(window.size().boundedTo(room));
}

} // namespace oblino
