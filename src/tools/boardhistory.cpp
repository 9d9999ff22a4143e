#include <tools/boardhistory.h>

#include <QPainter>

#include <algorithm>
#include <optional>
#include <utility>

namespace oblino {

namespace {

bool isPlain(const QImage &picture)
{
    return picture.format() == QImage::Format_RGB32;
}

// The smallest rectangle outside of which two plain pictures of one size are the same; none where they are.
std::optional<QRect> changedRect(const QImage &before, const QImage &after)
{
    const int width = before.width();
    QPoint first(width, before.height());
    QPoint last(-1, -1);
    for (int y = 0; y < before.height(); ++y) {
        const auto *one = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        const auto *other = reinterpret_cast<const QRgb *>(after.constScanLine(y));
        const auto start = std::mismatch(one, one + width, other).first - one;
        if (start == width)
            continue;
        const auto same =
            std::mismatch(std::make_reverse_iterator(one + width), std::make_reverse_iterator(one + start),
                          std::make_reverse_iterator(other + width))
                .first -
            std::make_reverse_iterator(one + width);
        first = {std::min(first.x(), int(start)), std::min(first.y(), y)};
        last = {std::max(last.x(), width - 1 - int(same)), y};
    }
    return last.y() < 0 ? std::optional<QRect>() : QRect(first, last);
}

// Pixel for pixel, whatever screen it was drawn on.
QImage cut(const QImage &picture, QRect place)
{
    QImage pixels = picture.copy(place);
    pixels.setDevicePixelRatio(1);
    return pixels;
}

} // namespace

void BoardHistory::record(const QString &name, const QImage &before, const QImage &after)
{
    if (before == after)
        return;
    QRect changed;
    if (isPlain(before) && isPlain(after) && before.size() == after.size())
        changed = changedRect(before, after).value_or(QRect());
    m_undone.clear();
    m_done += {name, changed, changed.isNull() ? before : cut(before, changed)};

    qint64 bytes = 0;
    const auto tooMuch = std::find_if(m_done.rbegin(), m_done.rend(), [&](const Step &step) {
        bytes += step.pixels.sizeInBytes();
        return bytes > m_limit;
    });
    m_done.erase(m_done.begin(), tooMuch.base());
}

void BoardHistory::clear()
{
    m_done.clear();
    m_undone.clear();
}

QString BoardHistory::nameOf(const Steps &steps)
{
    return steps.isEmpty() ? QString() : steps.last().name;
}

QImage BoardHistory::move(Steps &from, Steps &to, const QImage &now)
{
    if (from.isEmpty())
        return now;
    Step step = from.takeLast();
    QImage other = now;
    if (step.changed.isNull()) {
        std::swap(other, step.pixels);
    } else {
        const QImage pixels = std::exchange(step.pixels, cut(now, step.changed));
        other.setDevicePixelRatio(1);
        QPainter(&other).drawImage(step.changed.topLeft(), pixels);
    }
    to += step;
    return other;
}

} // namespace oblino
