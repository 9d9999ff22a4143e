#include <tools/windows/viewcontrollerwhiteboard.h>

#include <base/trace.h>
#include <controls/theme.h>

#include <QMouseEvent>
#include <QPainter>

namespace oblino {

ViewControllerWhiteboard::Line::Line(ViewControllerWhiteboard &controller, QWidget *parent)
    : QWidget(parent)
    , parentVC(controller)
{
    setObjectName(QStringLiteral("line"));
    setAccessibleName(ViewControllerWhiteboard::tr("Whiteboard"));
    setMouseTracking(true);
}

void ViewControllerWhiteboard::Line::mouseDown(const QPointF &point)
{
    trace("Mouse Down");
    if (GlobalVariable::lineDraw)
        trace("LineStart:", point.x(), point.y());
    myPath = QPainterPath(point);
}

void ViewControllerWhiteboard::Line::mouseDragged(const QPointF &point)
{
    trace("Mouse Dragged");
    if (GlobalVariable::lineDraw)
        myPath = QPainterPath(QPointF(myPath.elementAt(0)));
    myPath.lineTo(point);
    update();
}

void ViewControllerWhiteboard::Line::mouseUp(const QPointF &point)
{
    trace("Mouse Up");
    if (GlobalVariable::lineDraw)
        trace("LineEnd:", point.x(), point.y());
    parentVC.m_isChanged = true;
    parentVC.capture();
    parentVC.loadImage();
    // The stroke is in the picture now. Over it, its edges would grow darker with the next capture.
    clear();
}

void ViewControllerWhiteboard::Line::clear()
{
    myPath = {};
    update();
}

void ViewControllerWhiteboard::Line::mouseMoved(const QPointF & /*point*/)
{
    trace("Mouse Moved");
}

void ViewControllerWhiteboard::Line::draw(QPainter &painter)
{
    trace("Draw... Draw... Draw...");
    trace("Drawing");
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(myPath, QPen(screenColor(GlobalVariable::colorWell), GlobalVariable::lineWidth,
                                    Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void ViewControllerWhiteboard::Line::pressed(const QSinglePointEvent &event)
{
    if (event.button() == Qt::LeftButton)
        mouseDown(event.position());
}

void ViewControllerWhiteboard::Line::moved(const QSinglePointEvent &event)
{
    if (!event.buttons().testFlag(Qt::LeftButton))
        mouseMoved(event.position());
    else if (myPath.elementCount() > 0)
        mouseDragged(event.position());
}

void ViewControllerWhiteboard::Line::released(const QSinglePointEvent &event)
{
    if (event.button() == Qt::LeftButton && myPath.elementCount() > 0)
        mouseUp(event.position());
}

// Touch comes as mouse events too, because the view takes no events of its own for it.
void ViewControllerWhiteboard::Line::mousePressEvent(QMouseEvent *event)
{
    pressed(*event);
}

void ViewControllerWhiteboard::Line::mouseMoveEvent(QMouseEvent *event)
{
    moved(*event);
}

void ViewControllerWhiteboard::Line::mouseReleaseEvent(QMouseEvent *event)
{
    released(*event);
}

// As mouse events, the places of a pen would be whole pixels.
void ViewControllerWhiteboard::Line::tabletEvent(QTabletEvent *event)
{
    if (event->type() == QEvent::TabletPress)
        pressed(*event);
    else if (event->type() == QEvent::TabletRelease)
        released(*event);
    else
        moved(*event);
    event->accept();
}

void ViewControllerWhiteboard::Line::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    draw(painter);
}

} // namespace oblino
