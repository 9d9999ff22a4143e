#include <tools/pngtext.h>

#include <QByteArrayView>
#include <QtEndian>

namespace oblino {

QByteArray withoutPngText(const QByteArray &png)
{
    constexpr qsizetype signature = 8;
    constexpr qsizetype frame = 12; // length and type before a chunk's data, a checksum behind it
    QByteArray result = png.first(qMin(signature, png.size()));
    result.reserve(png.size());
    qsizetype at = signature;
    while (png.size() - at >= frame) {
        const qsizetype size = frame + qFromBigEndian<quint32>(png.constData() + at);
        const QByteArrayView type = QByteArrayView(png).sliced(at + 4, 4);
        const QByteArrayView chunk = QByteArrayView(png).sliced(at, qMin(size, png.size() - at));
        if (type != "tEXt" && type != "zTXt" && type != "iTXt")
            result += chunk;
        at += chunk.size();
    }
    if (at < png.size())
        result += QByteArrayView(png).sliced(at);
    return result;
}

} // namespace oblino
