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
    parentVC.finishStroke();
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

// A pen comes as it is, as the places of its mouse events would be whole pixels. Touch comes as mouse events,
// because the view takes no events of its own for it.
bool ViewControllerWhiteboard::Line::event(QEvent *event)
{
    if (!event->isSinglePointEvent())
        return QWidget::event(event);
    const auto &pointer = *static_cast<QSinglePointEvent *>(event);
    const bool isByLeft = pointer.button() == Qt::LeftButton;
    const bool isDrawing = myPath.elementCount() > 0;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TabletPress:
        if (isByLeft)
            mouseDown(pointer.position());
        break;
    case QEvent::MouseMove:
    case QEvent::TabletMove:
        if (!pointer.buttons().testFlag(Qt::LeftButton))
            mouseMoved(pointer.position());
        else if (isDrawing)
            mouseDragged(pointer.position());
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::TabletRelease:
        if (isByLeft && isDrawing)
            mouseUp(pointer.position());
        break;
    default:
        return QWidget::event(event);
    }
    event->accept();
    return true;
}

void ViewControllerWhiteboard::Line::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    draw(painter);
}

} // namespace oblino
