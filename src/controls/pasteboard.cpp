#include <controls/pasteboard.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

namespace oblino {

void Pasteboard::setText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

void Pasteboard::setTextAndImage(const QString &text, const QImage &image)
{
    auto *data = new QMimeData;
    data->setText(text);
    data->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(data);
}

} // namespace oblino
