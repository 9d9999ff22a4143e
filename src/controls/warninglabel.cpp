#include <controls/warninglabel.h>

#include <controls/theme.h>

#include <QEvent>

namespace oblino {

WarningLabel::WarningLabel(QWidget *parent)
    : QLabel(parent)
{
    setWordWrap(true);
    paintReadably();
    hide();
}

void WarningLabel::setWarning(const QString &warning)
{
    setText(warning);
    setVisible(!warning.isEmpty());
}

void WarningLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        paintReadably();
}

void WarningLabel::paintReadably()
{
    constexpr QRgb onLight = 0xffa8201a;
    constexpr QRgb onDark = 0xffffb4a9;
    const QColor color(isDark(palette()) ? onDark : onLight);
    if (palette().color(QPalette::Active, QPalette::WindowText) == color)
        return;
    QPalette colours; // sets these two alone, so that the others stay the application's
    colours.setColor(QPalette::Active, QPalette::WindowText, color);
    colours.setColor(QPalette::Inactive, QPalette::WindowText, color);
    setPalette(colours);
}

} // namespace oblino
