#pragma once

#include <QProxyStyle>

namespace oblino {

/// Qt's Fusion style with more air in buttons, and with outlines that can be seen on a dark ground too.
class OblinoStyle : public QProxyStyle
{
    Q_OBJECT

public:
    OblinoStyle();

    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                         const QWidget *widget) const override;
    [[nodiscard]] QIcon standardIcon(StandardPixmap icon, const QStyleOption *option,
                                     const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
};

} // namespace oblino
