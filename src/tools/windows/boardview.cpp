#include <tools/windows/boardview.h>

#include <QPainter>

namespace oblino {

BoardView::BoardView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void BoardView::setImage(const QImage &image)
{
    m_image = image;
    update();
}

void BoardView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    if (m_image.isNull())
        return;
    QImage image = m_image;
    // Scaling by nearly one would soften the picture a little with every stroke.
    const qreal pixels = painter.device()->devicePixelRatioF();
    if (image.size() == (QSizeF(size()) * pixels).toSize()) {
        image.setDevicePixelRatio(pixels);
        painter.drawImage(QPoint(), image);
        return;
    }
    QRectF place({}, QSizeF(image.size()).scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(rect()).center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, image);
}

} // namespace oblino
