#pragma once

#include <QObject>

namespace oblino {

/// Keeps the wheel from changing the value of a control that has not the focus: what lies below it scrolls
/// instead. To be installed as an event filter, of the application for all of its windows.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace oblino
