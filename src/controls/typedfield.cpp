#include <controls/typedfield.h>

#include <controls/elidedlabel.h>
#include <controls/icons.h>
#include <controls/theme.h>

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace oblino {

namespace {

constexpr int shownLength = 14;    // characters
constexpr float quietness = 0.72F; // of the text that says how the field is understood
constexpr int wheelStep = 120;     // eighths of a degree

// The text of the label that belongs to the field, without the mark of its shortcut.
QString labelOf(const QWidget *field)
{
    for (const QLabel *label : field->window()->findChildren<QLabel *>()) {
        if (label->buddy() == field)
            return label->text().remove(QLatin1Char('&'));
    }
    return field->accessibleName();
}

} // namespace

TypedField::TypedField(const QString &icon, const QString &buttonText, QWidget *parent)
    : QWidget(parent)
    , m_edit(new QLineEdit(this))
    , m_button(new QToolButton(this))
    , m_reading(new ElidedLabel(this))
    , m_warning(m_edit->addAction(themedIcon(QStringLiteral("warning")), QLineEdit::TrailingPosition))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_edit, 2);
    layout->addWidget(m_button);
    layout->addSpacing(8);
    layout->addWidget(m_reading, 3);
    m_edit->setMinimumWidth(fontMetrics().averageCharWidth() * shownLength);
    m_edit->installEventFilter(this);
    m_reading->setTextFormat(Qt::PlainText);
    m_warning->setText(tr("Warning"));
    m_button->setIcon(themedIcon(icon));
    m_button->setToolTip(buttonText);
    m_button->setAccessibleName(buttonText);
    m_button->setFocusPolicy(Qt::NoFocus);
    setFocusProxy(m_edit);
    setFocusPolicy(Qt::StrongFocus); // of the shortcut of its label; Tab goes to the line of text
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    mark(false);
    connect(m_button, &QToolButton::clicked, this, &TypedField::openPopup);
    connect(m_edit, &QLineEdit::textEdited, this, [this] {
        mark(false);
        showReading();
    });
}

bool TypedField::isUntouched() const
{
    return m_edit->text() == m_shown;
}

bool TypedField::judge()
{
    if (isUntouched())
        return true;
    const QString text = m_edit->text();
    if (!errorOf(text).isEmpty()) {
        mark(true);
        return false;
    }
    take(text);
    return true;
}

void TypedField::edit()
{
    m_edit->setFocus();
    m_edit->selectAll();
}

QString TypedField::validationError() const
{
    return isUntouched() ? QString() : errorOf(m_edit->text());
}

void TypedField::showValue()
{
    m_shown = normalText();
    if (m_edit->text() != m_shown)
        m_edit->setText(m_shown);
    mark(false);
    showReading();
}

void TypedField::mark(bool marked)
{
    m_isMarked = marked;
    m_warning->setVisible(marked);
    QPalette palette;
    if (marked)
        palette.setColor(QPalette::Base,
                         isDark(this->palette()) ? QColor(0x5a, 0x26, 0x26) : QColor(0xff, 0xe3, 0xe0));
    m_edit->setPalette(palette);
    QColor quiet = this->palette().color(QPalette::WindowText);
    quiet.setAlphaF(marked ? 1.0F : quietness);
    QPalette ofReading;
    ofReading.setColor(QPalette::WindowText, quiet);
    m_reading->setPalette(ofReading);
    if (marked)
        m_reading->setText(validationError());
    m_edit->setAccessibleDescription(marked ? validationError() : m_reading->text());
}

void TypedField::showReading()
{
    m_reading->setText(readingOf(m_edit->text()));
    m_edit->setAccessibleDescription(m_reading->text());
}

void TypedField::openPopup()
{
    if (m_popup)
        return;
    (void)judge();
    m_edit->setFocus(Qt::OtherFocusReason);
    m_popup = new QFrame(this, Qt::Popup);
    m_popup->setAttribute(Qt::WA_DeleteOnClose);
    m_popup->setFrameShape(QFrame::StyledPanel);
    (new QVBoxLayout(m_popup))->setContentsMargins(1, 1, 1, 1);
    fillPopup(m_popup);

    const QRect free = screen()->availableGeometry();
    m_popup->adjustSize();
    QPoint place = mapToGlobal(QPoint(0, height()));
    if (place.y() + m_popup->height() > free.bottom())
        place.setY(std::max(free.top(), mapToGlobal(QPoint()).y() - m_popup->height()));
    place.setX(std::clamp(place.x(), free.left(), std::max(free.left(), free.right() - m_popup->width())));
    m_popup->move(place);
    m_popup->show();
}

void TypedField::closePopup()
{
    if (m_popup)
        m_popup->close();
}

bool TypedField::handlesKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (key == Qt::Key_F4 || (key == Qt::Key_Down && modifiers.testFlag(Qt::AltModifier))) {
        openPopup();
        return true;
    }
    const bool isUp = key == Qt::Key_Up || key == Qt::Key_PageUp;
    const bool isLarge = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (!isUp && !isLarge && key != Qt::Key_Down)
        return (key == Qt::Key_Return || key == Qt::Key_Enter) && !judge();
    if (judge())
        step(isUp ? 1 : -1, isLarge);
    return true;
}

bool TypedField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_edit && event->type() == QEvent::KeyPress) {
        const auto *press = static_cast<QKeyEvent *>(event);
        if (handlesKey(press->key(), press->modifiers()))
            return true;
    }
    if (watched == m_edit && event->type() == QEvent::FocusOut) {
        switch (static_cast<QFocusEvent *>(event)->reason()) {
        case Qt::PopupFocusReason:
        case Qt::MenuBarFocusReason:
        case Qt::ActiveWindowFocusReason: // whoever looks something up elsewhere goes on typing here
            break;
        default:
            (void)judge();
            Q_EMIT left();
        }
    }
    return QWidget::eventFilter(watched, event);
}

bool TypedField::event(QEvent *event)
{
    if (event->type() == QEvent::Polish)
        m_edit->setAccessibleName(labelOf(this));
    else if (event->type() == QEvent::PaletteChange)
        mark(m_isMarked);
    return QWidget::event(event);
}

void TypedField::wheelEvent(QWheelEvent *event)
{
    const int steps = event->angleDelta().y() / wheelStep;
    if (!m_edit->hasFocus() || steps == 0) {
        event->ignore();
        return;
    }
    if (judge())
        step(steps, false);
    event->accept();
}

} // namespace oblino
