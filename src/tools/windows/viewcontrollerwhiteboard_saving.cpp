#include <tools/windows/viewcontrollerwhiteboard.h>

#include <base/trace.h>
#include <tools/windows/boardview.h>
#include <ui_viewcontrollerwhiteboard.h>

#include <QBuffer>

namespace oblino {

namespace {

constexpr int quickly = 80; // a PNG quality: half the time of the usual one, for a file of the same size

QByteArray pngOf(const QImage &image)
{
    QByteArray png;
    QBuffer buffer(&png);
    return image.save(&buffer, "PNG", quickly) ? png : QByteArray();
}

} // namespace

void ViewControllerWhiteboard::loadImage()
{
    if (!m_unsaved.isNull()) {
        m_ui->whiteboard->setImage(m_unsaved);
        return;
    }
    if (!m_path)
        return;
    const WhiteboardFile::Reading reading =
        m_file.read(*m_path + QLatin1Char('/') + WhiteboardFile::name, m_line->size());
    showNotices(reading.notices);
    setFailure({}, {});
    // What was there a moment ago is written again rather than drawn over.
    m_isChanged = reading.hasFailed && !m_last.isNull();
    if (!m_isChanged)
        m_last = reading.picture;
    m_ui->whiteboard->setImage(m_last);
}

QImage ViewControllerWhiteboard::picture() const
{
    const qreal pixels = devicePixelRatioF();
    QImage bitmap((QSizeF(m_line->size()) * pixels).toSize(), QImage::Format_RGB32);
    if (bitmap.isNull())
        return {};
    bitmap.setDevicePixelRatio(pixels);
    bitmap.fill(Qt::white);
    m_ui->whiteboard->render(&bitmap, {}, {}, {});
    m_line->render(&bitmap, {}, {}, {});
    return bitmap;
}

void ViewControllerWhiteboard::capture()
{
    // On a screen of fewer pixels the picture would lose some for nothing.
    if (!isUnsaved())
        return;
    savePNG(picture(), WhiteboardFile::name);
}

void ViewControllerWhiteboard::savePNG(const QImage &image, const QString &path)
{
    const QByteArray png = pngOf(image);
    if (png.isEmpty()) {
        const QString error = tr("The picture of the whiteboard could not be made.");
        return setFailure(error, error);
    }
    m_captured = m_line->path();
    const FileWriting writing = m_file.write(png, path);
    m_unsaved = writing.written ? QImage() : image;
    m_last = writing.written ? image : m_last;
    m_isChanged = false;
    showResult(writing);
    if (!writing.written)
        trace("caught:", writing.error);
}

void ViewControllerWhiteboard::finishStroke()
{
    const QImage before = shown();
    m_isChanged = true;
    capture();
    loadImage();
    // The stroke is in the picture now. Over it, its edges would grow darker with the next capture.
    m_line->clear();
    record(GlobalVariable::lineDraw ? tr("Straight Line") : tr("Stroke"), before);
}

bool ViewControllerWhiteboard::isDrawing() const
{
    return m_line->path().elementCount() > 0;
}

// A stroke that the window's end cuts off is in the picture as far as it was drawn.
void ViewControllerWhiteboard::endStroke()
{
    m_line->clear();
    if (!m_unsaved.isNull())
        m_ui->whiteboard->setImage(m_unsaved);
}

void ViewControllerWhiteboard::discard()
{
    m_unsaved = {};
    m_isChanged = false;
    m_line->clear();
}

bool ViewControllerWhiteboard::hasUnsavedStroke() const
{
    const QPainterPath stroke = m_line->path();
    return stroke.elementCount() > 1 && stroke != m_captured;
}

QString ViewControllerWhiteboard::workTitle() const
{
    return tr("The whiteboard");
}

bool ViewControllerWhiteboard::isUnsaved() const
{
    return m_isChanged || !m_unsaved.isNull() || hasUnsavedStroke();
}

QByteArray ViewControllerWhiteboard::unsavedContent() const
{
    return pngOf(picture());
}

QString ViewControllerWhiteboard::unsavedFileName() const
{
    return WhiteboardFile::name;
}

} // namespace oblino
