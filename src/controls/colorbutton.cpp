#include <controls/colorbutton.h>

#include <controls/colorname.h>
#include <controls/colorpopup.h>
#include <controls/swatches.h>
#include <controls/theme.h>

#include <QColorDialog>
#include <QKeyEvent>
#include <QPainter>

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
    setToolTip(tr("Choose a color"));
    connect(this, &QPushButton::clicked, this, &ColorButton::openPopup);
}

void ColorButton::setColor(const Color &color)
{
    m_color = color;
    setAccessibleName(tr("Color: %1").arg(colorName(color)));
    if (m_popup)
        m_popup->close(); // which marks the one before, perhaps of the other appearance
    update();
}

void ColorButton::deactivate()
{
    if (m_popup)
        m_popup->close();
    if (m_panel)
        m_panel->hide();
}

void ColorButton::openPopup()
{
    const QList<Color> colors = m_use == Use::Pen ? penSwatches() : taskSwatches(isDark(palette()));
    m_popup = new ColorPopup(colors, m_color, this);
    connect(m_popup, &ColorPopup::picked, this, &ColorButton::pick);
    connect(m_popup, &ColorPopup::moreChosen, this, &ColorButton::openPanel);
    m_popup->showAt(*this);
}

void ColorButton::pick(const Color &color)
{
    setColor(color);
    Q_EMIT picked();
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
            pick(color == screenColor(m_color) ? m_color : pickedColor(color));
        });
    }
    m_panel->setCurrentColor(screenColor(m_color));
    m_panel->open();
}

void ColorButton::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isAltDown = event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier;
    if (isReturn || isAltDown)
        click();
    else
        QPushButton::keyPressEvent(event);
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
