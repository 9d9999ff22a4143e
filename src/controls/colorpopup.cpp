#include <controls/colorpopup.h>

#include <controls/colorname.h>
#include <controls/theme.h>

#include <QGridLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>

#include <algorithm>

namespace oblino {

namespace {

constexpr int columns = 4;
constexpr int gap = 4;    // pixels between two colours
constexpr int margin = 8; // pixels around all
constexpr int ring = 2;   // pixels, of the focus
constexpr int radius = 4;

// Paints its colour, a ring when it has the focus, and a check mark when it is the current one.
class Swatch : public QToolButton
{
public:
    Swatch(const QColor &color, QWidget *parent)
        : QToolButton(parent)
        , m_color(color)
    {
        setFocusPolicy(Qt::StrongFocus);
        setCheckable(true);
        const int side = std::max(32, 2 * fontMetrics().height());
        setFixedSize(side, side);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (hasFocus() || underMouse()) {
            painter.setPen(QPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid), ring));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius + ring, radius + ring);
        }
        const QRectF field = QRectF(rect()).adjusted(4.5, 4.5, -4.5, -4.5);
        QColor outline = palette().color(QPalette::WindowText);
        outline.setAlphaF(0.35F);
        painter.setPen(outline);
        painter.setBrush(m_color);
        painter.drawRoundedRect(field, radius, radius);
        if (!isChecked())
            return;
        painter.setPen(QPen(readableOn(m_color), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const auto at = [&field](double x, double y) {
            return QPointF(field.left() + x * field.width(), field.top() + y * field.height());
        };
        painter.drawPolyline(QPolygonF{at(0.28, 0.52), at(0.44, 0.68), at(0.73, 0.35)});
    }

private:
    QColor m_color;
};

} // namespace

ColorPopup::ColorPopup(const QList<Color> &colors, const Color &current, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_grid(new QGridLayout(this))
{
    setObjectName(QStringLiteral("colorPopup"));
    setAccessibleName(tr("Colors"));
    setFrameShape(QFrame::StyledPanel);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_NoMouseReplay); // the click that closes it must not open it again
    m_grid->setContentsMargins(margin, margin, margin, margin);
    m_grid->setSpacing(gap);
    for (const Color &color : colors)
        addSwatch(color, color == current);

    auto *more = new QPushButton(tr("More…"), this);
    more->setObjectName(QStringLiteral("moreColors"));
    more->setToolTip(tr("Choose any other color"));
    more->setAutoDefault(false);
    addButton(more, columns);
    connect(more, &QPushButton::clicked, this, [this] {
        close();
        Q_EMIT moreChosen();
    });
}

void ColorPopup::addSwatch(const Color &color, bool isCurrent)
{
    auto *swatch = new Swatch(screenColor(color), this);
    const QString name = colorName(color);
    swatch->setAccessibleName(name);
    swatch->setToolTip(name);
    swatch->setChecked(isCurrent);
    if (isCurrent || !m_first)
        m_first = swatch;
    addButton(swatch, 1);
    connect(swatch, &QToolButton::clicked, this, [this, color] {
        close();
        Q_EMIT picked(color);
    });
}

void ColorPopup::addButton(QAbstractButton *button, int columnSpan)
{
    const int index = int(m_buttons.size());
    m_grid->addWidget(button, index / columns, index % columns, 1, columnSpan);
    button->installEventFilter(this);
    m_buttons += button;
}

void ColorPopup::showAt(const QWidget &button)
{
    showAt({button.mapToGlobal(QPoint()), button.size()}, button.screen()->availableGeometry());
}

void ColorPopup::showAt(const QRect &place, const QRect &screen)
{
    const QSize size = sizeHint();
    const bool hasRoom = place.bottom() + 1 + size.height() <= screen.bottom();
    const int right = std::max(screen.left(), screen.right() - size.width());
    move(std::clamp(place.left(), screen.left(), right),
         hasRoom ? place.bottom() + 1 : place.top() - size.height());
    show();
    if (m_first)
        m_first->setFocus(Qt::PopupFocusReason);
}

bool ColorPopup::eventFilter(QObject *watched, QEvent *event)
{
    auto *button = qobject_cast<QAbstractButton *>(watched);
    return (button && event->type() == QEvent::KeyPress &&
            takeKey(*button, static_cast<QKeyEvent *>(event)->key())) ||
           QFrame::eventFilter(watched, event);
}

bool ColorPopup::takeKey(QAbstractButton &button, int key)
{
    switch (key) {
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        button.click();
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        step(m_buttons.indexOf(&button), key);
        return true;
    default:
        return false;
    }
}

void ColorPopup::step(qsizetype from, int key)
{
    const qsizetype last = m_buttons.size() - 1;
    const bool isForward = (key == Qt::Key_Right) != isRightToLeft();
    qsizetype to = from;
    if (key == Qt::Key_Up)
        to = from == last ? last - columns + m_column : from - columns;
    else if (key == Qt::Key_Down)
        to = std::min(from + columns, last);
    else if (from != last)
        to = std::min(isForward ? from + 1 : from - 1, last - 1);
    if (to == last && from != last)
        m_column = from % columns;
    if (to >= 0)
        m_buttons.at(to)->setFocus(Qt::OtherFocusReason);
}

} // namespace oblino
