#include <controls/colorbutton.h>

#include <controls/theme.h>

#include <QColorDialog>
#include <QPainter>
#include <QPointer>

namespace oblino {

namespace {

constexpr int frame = 6; // pixels of the button around the colour

Color pickedColor(const QColor &color)
{
    constexpr double full = 255;
    return {color.red() / full, color.green() / full, color.blue() / full, color.alpha() / full};
}

// The button whose panel is open.
QPointer<ColorButton> &active()
{
    static QPointer<ColorButton> button;
    return button;
}

} // namespace

ColorButton::ColorButton(QWidget *parent)
    : QPushButton(parent)
{
    setMinimumSize(72, 32);
    connect(this, &QPushButton::clicked, this, &ColorButton::openPanel);
}

void ColorButton::setColor(const Color &color)
{
    m_color = color;
    setAccessibleDescription(screenColor(color).name(QColor::HexArgb));
    update();
}

void ColorButton::deactivate()
{
    if (m_panel)
        m_panel->hide();
}

void ColorButton::openPanel()
{
    if (active() && active() != this)
        active()->deactivate();
    active() = this;
    if (!m_panel) {
        m_panel = new QColorDialog(this);
        m_panel->setObjectName(QStringLiteral("colorPanel"));
        m_panel->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
        connect(m_panel, &QColorDialog::currentColorChanged, this, &ColorButton::panelColorChanged);
        connect(m_panel, &QColorDialog::colorSelected, this, [this](const QColor &color) {
            if (color != screenColor(m_color))
                setColor(pickedColor(color));
            Q_EMIT picked();
        });
    }
    m_panel->setCurrentColor(screenColor(m_color));
    m_panel->open();
}

void ColorButton::paintEvent(QPaintEvent *event)
{
    QPushButton::paintEvent(event);
    QPainter painter(this);
    const QRect field = rect().adjusted(frame, frame, -frame - 1, -frame - 1);
    painter.fillRect(field, composited(screenColor(m_color), palette().color(QPalette::Base)));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(field);
}

} // namespace oblino
