#include <controls/wheelguard.h>

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QScrollBar>
#include <QSlider>

namespace oblino {

namespace {

QWidget *valueControl(QObject *object)
{
    const bool hasValue = qobject_cast<QComboBox *>(object) || qobject_cast<QAbstractSpinBox *>(object) ||
                          qobject_cast<QSlider *>(object);
    return hasValue ? static_cast<QWidget *>(object) : nullptr;
}

} // namespace

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Polish) {
        // Else the wheel gives the control the focus before it turns its value.
        if (QWidget *control = valueControl(watched); control && control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::StrongFocus);
    } else if (event->type() == QEvent::Wheel) {
        if (const QWidget *control = valueControl(watched); control && !control->hasFocus()) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace oblino
