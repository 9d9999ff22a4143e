#include <controls/oblinostyle.h>

#include <controls/icons.h>
#include <controls/theme.h>

#include <QPainter>
#include <QPainterPath>
#include <QScopeGuard>
#include <QStyleOption>

namespace oblino {

namespace {

constexpr int buttonAir = 12; // pixels, both sides together
constexpr double roundness = 2;

// 3:1 against the ground, which the Web Content Accessibility Guidelines 2.1 ask of controls.
QColor outline(const QStyleOption &option)
{
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    return isEnabled ? option.palette.color(QPalette::Disabled, QPalette::WindowText)
                     : option.palette.color(QPalette::Mid);
}

// A square in the middle of the place of an indicator, on whole pixels.
QRectF indicatorPlace(const QStyleOption &option)
{
    const int side = std::min(option.rect.width(), option.rect.height()) - 1;
    QRectF place(0.5, 0.5, side, side);
    place.translate(option.rect.topLeft());
    return place;
}

void drawGround(QPainter &painter, const QStyleOption &option, bool isOn)
{
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const QColor fill = isOn && isEnabled
                            ? option.palette.color(QPalette::Highlight)
                            : option.palette.color(isEnabled ? QPalette::Base : QPalette::Window);
    const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(isOn || hasFocus ? option.palette.color(QPalette::Highlight) : outline(option));
    painter.setBrush(fill);
}

void drawCheckBox(QPainter &painter, const QStyleOption &option)
{
    const bool isOn = option.state.testFlag(QStyle::State_On);
    const QRectF place = indicatorPlace(option);
    drawGround(painter, option, isOn);
    painter.drawRoundedRect(place, roundness, roundness);
    if (!isOn)
        return;
    const auto at = [&place](double x, double y) {
        return place.topLeft() + QPointF(place.width() * x, place.height() * y);
    };
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(option.palette.color(QPalette::HighlightedText), place.width() / 7, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{at(0.24, 0.53), at(0.43, 0.72), at(0.77, 0.30)}});
}

void drawRadioButton(QPainter &painter, const QStyleOption &option)
{
    const bool isOn = option.state.testFlag(QStyle::State_On);
    const QRectF place = indicatorPlace(option);
    drawGround(painter, option, isOn);
    painter.drawEllipse(place);
    if (!isOn)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(option.palette.color(QPalette::HighlightedText));
    painter.drawEllipse(place.center(), place.width() / 5, place.height() / 5);
}

// Over the one that Fusion has drawn, which a dark ground swallows.
void drawFrame(QPainter &painter, const QStyleOption &option, const QColor &color)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(color);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), roundness, roundness);
}

bool wantsFrame(const QStyleOption &option)
{
    return isDark(option.palette) && !option.state.testFlag(QStyle::State_HasFocus);
}

[[nodiscard]] auto saved(QPainter *painter)
{
    painter->save();
    return qScopeGuard([painter] { painter->restore(); });
}

} // namespace

OblinoStyle::OblinoStyle()
    : QProxyStyle(QStringLiteral("fusion"))
{
}

QSize OblinoStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                    const QWidget *widget) const
{
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    return type == CT_PushButton ? size + QSize(buttonAir, 0) : size;
}

// Those that a main window needs, as the first picture of Fusion's own would load a number of plugins.
QIcon OblinoStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    switch (icon) {
    case SP_ToolBarHorizontalExtensionButton:
        return themedIcon(QStringLiteral("more"));
    case SP_LineEditClearButton:
        return themedIcon(QStringLiteral("clear"));
    default:
        return QProxyStyle::standardIcon(icon, option, widget);
    }
}

void OblinoStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const
{
    const auto restoring = saved(painter);
    switch (element) {
    case PE_IndicatorCheckBox:
        return drawCheckBox(*painter, *option);
    case PE_IndicatorRadioButton:
        return drawRadioButton(*painter, *option);
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    if (element == PE_FrameLineEdit && wantsFrame(*option))
        drawFrame(*painter, *option, outline(*option));
    if (element == PE_Frame && isDark(option->palette))
        drawFrame(*painter, *option, option->palette.color(QPalette::Mid));
}

void OblinoStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    if (element != CE_ProgressBarGroove)
        return QProxyStyle::drawControl(element, option, painter, widget);
    const auto restoring = saved(painter);
    // Without an outline an empty bar is not taken for a field.
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(option->palette.color(QPalette::Mid));
    painter->drawRoundedRect(option->rect, roundness, roundness);
}

void OblinoStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                     QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const bool hasField = control == CC_SpinBox || control == CC_ComboBox;
    if (!hasField || !wantsFrame(*option))
        return;
    const auto restoring = saved(painter);
    drawFrame(*painter, *option, outline(*option));
}

} // namespace oblino
