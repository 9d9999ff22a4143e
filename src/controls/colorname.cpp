#include <controls/colorname.h>

#include <controls/theme.h>

#include <QCoreApplication>
#include <QRgb>

#include <algorithm>
#include <array>
#include <cmath>

namespace oblino {

namespace {

struct Name
{
    QRgb color;
    const char *name;
};

constexpr std::array names = std::to_array<Name>({
    {0xffffff, QT_TRANSLATE_NOOP("oblino::Color", "White")},
    {0xcdd3da, QT_TRANSLATE_NOOP("oblino::Color", "Silver")},
    {0xf6b8c4, QT_TRANSLATE_NOOP("oblino::Color", "Rose")},
    {0xffbd8c, QT_TRANSLATE_NOOP("oblino::Color", "Peach")},
    {0xece0c4, QT_TRANSLATE_NOOP("oblino::Color", "Sand")},
    {0xfbee7d, QT_TRANSLATE_NOOP("oblino::Color", "Lemon")},
    {0xcbe896, QT_TRANSLATE_NOOP("oblino::Color", "Lime")},
    {0xa4e6bf, QT_TRANSLATE_NOOP("oblino::Color", "Mint")},
    {0x93e0ea, QT_TRANSLATE_NOOP("oblino::Color", "Aqua")},
    {0xa3cdfa, QT_TRANSLATE_NOOP("oblino::Color", "Sky")},
    {0xbcb8f7, QT_TRANSLATE_NOOP("oblino::Color", "Lavender")},
    {0xecb6ee, QT_TRANSLATE_NOOP("oblino::Color", "Orchid")},
    {0x000000, QT_TRANSLATE_NOOP("oblino::Color", "Black")},
    {0x322c25, QT_TRANSLATE_NOOP("oblino::Color", "Charcoal")},
    {0x09473b, QT_TRANSLATE_NOOP("oblino::Color", "Pine")},
    {0x004273, QT_TRANSLATE_NOOP("oblino::Color", "Ocean")},
    {0x131f3b, QT_TRANSLATE_NOOP("oblino::Color", "Navy")},
    {0x041182, QT_TRANSLATE_NOOP("oblino::Color", "Ultramarine")},
    {0x341769, QT_TRANSLATE_NOOP("oblino::Color", "Indigo")},
    {0x5b1940, QT_TRANSLATE_NOOP("oblino::Color", "Plum")},
    {0x6c1f15, QT_TRANSLATE_NOOP("oblino::Color", "Maroon")},
    {0x5c3205, QT_TRANSLATE_NOOP("oblino::Color", "Brown")},
    {0x434708, QT_TRANSLATE_NOOP("oblino::Color", "Olive")},
    {0x134911, QT_TRANSLATE_NOOP("oblino::Color", "Forest")},
    {0x6b7280, QT_TRANSLATE_NOOP("oblino::Color", "Gray")},
    {0xa8a8a8, QT_TRANSLATE_NOOP("oblino::Color", "Light gray")},
    {0x4a4a4a, QT_TRANSLATE_NOOP("oblino::Color", "Dark gray")},
    {0xc62828, QT_TRANSLATE_NOOP("oblino::Color", "Red")},
    {0xff0000, QT_TRANSLATE_NOOP("oblino::Color", "Bright red")},
    {0x8b0000, QT_TRANSLATE_NOOP("oblino::Color", "Dark red")},
    {0xff7f66, QT_TRANSLATE_NOOP("oblino::Color", "Coral")},
    {0xd9660a, QT_TRANSLATE_NOOP("oblino::Color", "Orange")},
    {0xff9800, QT_TRANSLATE_NOOP("oblino::Color", "Bright orange")},
    {0x7a4a21, QT_TRANSLATE_NOOP("oblino::Color", "Chestnut")},
    {0xb08d62, QT_TRANSLATE_NOOP("oblino::Color", "Light brown")},
    {0xd4a017, QT_TRANSLATE_NOOP("oblino::Color", "Gold")},
    {0xffeb00, QT_TRANSLATE_NOOP("oblino::Color", "Yellow")},
    {0x8a8000, QT_TRANSLATE_NOOP("oblino::Color", "Moss")},
    {0x2e7d32, QT_TRANSLATE_NOOP("oblino::Color", "Green")},
    {0x00ff00, QT_TRANSLATE_NOOP("oblino::Color", "Bright green")},
    {0x66bb6a, QT_TRANSLATE_NOOP("oblino::Color", "Light green")},
    {0x00838f, QT_TRANSLATE_NOOP("oblino::Color", "Teal")},
    {0x00ffff, QT_TRANSLATE_NOOP("oblino::Color", "Cyan")},
    {0x1565c0, QT_TRANSLATE_NOOP("oblino::Color", "Blue")},
    {0x0000ff, QT_TRANSLATE_NOOP("oblino::Color", "Bright blue")},
    {0x1a237e, QT_TRANSLATE_NOOP("oblino::Color", "Dark blue")},
    {0x5b8fc9, QT_TRANSLATE_NOOP("oblino::Color", "Light blue")},
    {0x6a2fa0, QT_TRANSLATE_NOOP("oblino::Color", "Purple")},
    {0x9575e0, QT_TRANSLATE_NOOP("oblino::Color", "Violet")},
    {0xff00ff, QT_TRANSLATE_NOOP("oblino::Color", "Magenta")},
    {0xc2187a, QT_TRANSLATE_NOOP("oblino::Color", "Raspberry")},
    {0xff69b4, QT_TRANSLATE_NOOP("oblino::Color", "Pink")},
});

// CIE 1976 L*a*b* under D65, in which a distance is about what the eye sees of it.
struct Lab
{
    double lightness;
    double a;
    double b;
};

Lab labOf(double red, double green, double blue)
{
    const double r = linearComponent(red);
    const double g = linearComponent(green);
    const double b = linearComponent(blue);
    const auto curve = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
    const double x = curve((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.9505);
    const double y = curve(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const double z = curve((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.089);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(const Lab &one, const Lab &other)
{
    return std::hypot(one.lightness - other.lightness, one.a - other.a, one.b - other.b);
}

} // namespace

QString colorName(const Color &color)
{
    const Lab sought = labOf(color.red(), color.green(), color.blue());
    const auto distanceTo = [&sought](const Name &name) {
        constexpr double full = 255;
        return distance(sought,
                        labOf(qRed(name.color) / full, qGreen(name.color) / full, qBlue(name.color) / full));
    };
    const auto nearest =
        std::min_element(names.begin(), names.end(), [&distanceTo](const Name &one, const Name &other) {
            return distanceTo(one) < distanceTo(other);
        });
    const QString name = QCoreApplication::translate("oblino::Color", nearest->name);
    const long percent = std::lround(100 * std::clamp(color.alpha(), 0.0, 1.0));
    return percent == 100
               ? name
               : QCoreApplication::translate("oblino::Color", "%1, %2% opaque").arg(name).arg(percent);
}

} // namespace oblino
