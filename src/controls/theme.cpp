#include <controls/theme.h>

#include <base/appearance.h>
#include <controls/oblinostyle.h>

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace oblino {

namespace {

struct Tones
{
    QRgb window;
    QRgb base;
    QRgb text;
    QRgb button;
    QRgb muted;
    QRgb line;
    QRgb accent;
};

constexpr Tones light = {0xfff4f5f7, 0xffffffff, 0xff1d232b, 0xfffafbfc, 0xff8b94a1, 0xffd5d9df, 0xff1f6f8b};
constexpr Tones dark = {0xff22262b, 0xff000000, 0xffe7eaee, 0xff2c3138, 0xff7d8794, 0xff3b424b, 0xff2f8fae};

// Relative luminance, 0..1, as the Web Content Accessibility Guidelines 2.1 define it.
double luminance(const QColor &color)
{
    return 0.2126 * linearComponent(color.redF()) + 0.7152 * linearComponent(color.greenF()) +
           0.0722 * linearComponent(color.blueF());
}

bool desktopHasStyle()
{
    const QStyle *style = QApplication::style();
    const bool isOurs = qobject_cast<const OblinoStyle *>(style) ||
                        style->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) == 0;
    return !isOurs || qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QLatin1String("KDE"));
}

} // namespace

QPalette calmPalette(bool inDark)
{
    const Tones &tones = inDark ? dark : light;
    QPalette palette(QColor(tones.text), QColor(tones.button), QColor(tones.base),
                     QColor(tones.line).darker(130), QColor(tones.line), QColor(tones.text), Qt::white,
                     QColor(tones.base), QColor(tones.window));
    palette.setColor(QPalette::Highlight, QColor(tones.accent));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(tones.accent));
    palette.setColor(QPalette::AlternateBase, QColor(tones.window));
    palette.setColor(QPalette::ToolTipBase, QColor(tones.button));
    palette.setColor(QPalette::ToolTipText, QColor(tones.text));
    palette.setColor(QPalette::PlaceholderText, QColor(tones.muted));
    palette.setColor(QPalette::Mid, QColor(tones.line));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(tones.muted));
    return palette;
}

void applyAppearance(bool inDark)
{
    if (desktopHasStyle())
        return;
    if (!qobject_cast<OblinoStyle *>(QApplication::style()))
        QApplication::setStyle(new OblinoStyle);
    QPalette palette = calmPalette(inDark);
    QApplication::setPalette(palette);
    // Icons do not change colour under the highlight of a menu, so that is only a tint.
    QColor tint = palette.color(QPalette::Highlight);
    tint.setAlphaF(0.25F);
    palette.setColor(QPalette::Highlight, composited(tint, palette.color(QPalette::Base)));
    palette.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
    QApplication::setPalette(palette, "QMenu");
}

bool isDark(const QPalette &palette)
{
    return isDark(palette.color(QPalette::Window).lightnessF());
}

QColor screenColor(const Color &color)
{
    const auto inside = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    return QColor::fromRgbF(inside(color.red()), inside(color.green()), inside(color.blue()),
                            inside(color.alpha()));
}

double linearComponent(double component)
{
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

QColor readableOn(const QColor &background)
{
    // The contrast ratio to white is 1.05 / (l + 0.05), to black (l + 0.05) / 0.05.
    const double l = luminance(background) + 0.05;
    return l * l > 1.05 * 0.05 ? Qt::black : Qt::white;
}

QColor composited(const QColor &color, const QColor &ground)
{
    const float alpha = color.alphaF();
    const auto mixed = [alpha](float over, float under) { return over * alpha + under * (1 - alpha); };
    return QColor::fromRgbF(mixed(color.redF(), ground.redF()), mixed(color.greenF(), ground.greenF()),
                            mixed(color.blueF(), ground.blueF()));
}

} // namespace oblino
