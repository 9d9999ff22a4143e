#pragma once

#include <QVariantList>

class QObject;

namespace oblino {

/// Offers texts and pictures to the desktop's ways of passing them on.
class SharingPicker
{
public:
    SharingPicker() = default;
    SharingPicker(const SharingPicker &) = delete;
    SharingPicker &operator=(const SharingPicker &) = delete;
    virtual ~SharingPicker() = default;

    enum class Edge { Left, Top };

    /// Shows what can be done with the items, each a text (QString) or a picture (QImage), at that edge of
    /// the control where the screen has room there. The control may be gone by the time; then nothing is
    /// shown. The control's window may close meanwhile.
    virtual void show(const QVariantList &items, QObject *control, Edge edge) = 0;
};

} // namespace oblino
