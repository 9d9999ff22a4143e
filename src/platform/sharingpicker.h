#pragma once

#include <QString>

class QObject;

namespace oblino {

/// Offers a text to the desktop's ways of passing it on.
class SharingPicker
{
public:
    SharingPicker() = default;
    SharingPicker(const SharingPicker &) = delete;
    SharingPicker &operator=(const SharingPicker &) = delete;
    virtual ~SharingPicker() = default;

    /// Shows what can be done with the text, at the left edge of the control. The control may be gone by the
    /// time; then nothing is shown.
    virtual void show(const QString &text, QObject *control) = 0;
};

} // namespace oblino
