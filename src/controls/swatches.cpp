#include <controls/swatches.h>

#include <QRgb>

#include <array>

namespace oblino {

namespace {

// Far enough apart to be told from each other, the inverses too.
constexpr std::array<QRgb, 12> taskColors = {0xffffff, 0xcdd3da, 0xf6b8c4, 0xffbd8c, 0xece0c4, 0xfbee7d,
                                             0xcbe896, 0xa4e6bf, 0x93e0ea, 0xa3cdfa, 0xbcb8f7, 0xecb6ee};

constexpr std::array<QRgb, 12> penColors = {0x000000, 0x6b7280, 0xc62828, 0xd9660a, 0x7a4a21, 0x8a8000,
                                            0x2e7d32, 0x00838f, 0x1565c0, 0x1a237e, 0x6a2fa0, 0xc2187a};

Color colorOf(QRgb rgb)
{
    constexpr double full = 255;
    return {qRed(rgb) / full, qGreen(rgb) / full, qBlue(rgb) / full, 1};
}

} // namespace

QList<Color> taskSwatches(bool inDark)
{
    QList<Color> colors;
    for (const QRgb rgb : taskColors)
        colors += inDark ? colorOf(rgb).inverted() : colorOf(rgb);
    return colors;
}

QList<Color> penSwatches()
{
    QList<Color> colors;
    for (const QRgb rgb : penColors)
        colors += colorOf(rgb);
    return colors;
}

} // namespace oblino
