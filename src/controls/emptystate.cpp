#include <controls/emptystate.h>

#include <controls/icons.h>

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace oblino {

namespace {

constexpr int pictureSize = 96;

QLabel *centredLabel(QWidget *parent, const QString &name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

EmptyState::EmptyState(QWidget *viewport)
    : QWidget(viewport)
    , m_picture(centredLabel(this, QStringLiteral("emptyPicture")))
    , m_title(centredLabel(this, QStringLiteral("emptyTitle")))
    , m_advice(centredLabel(this, QStringLiteral("emptyAdvice")))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    enlargeTitle();

    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addStretch(2);
    for (QLabel *label : {m_picture, m_title, m_advice})
        layout->addWidget(label);
    layout->addStretch(3);
    showPicture();

    viewport->installEventFilter(this);
    setGeometry(viewport->rect());
}

void EmptyState::setText(const QString &title, const QString &advice)
{
    m_title->setText(title);
    m_advice->setText(advice);
}

bool EmptyState::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void EmptyState::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        showPicture();
    else if (event->type() == QEvent::FontChange)
        enlargeTitle();
    QWidget::changeEvent(event);
}

void EmptyState::enlargeTitle()
{
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    m_title->setFont(large);
}

void EmptyState::showPicture()
{
    m_picture->setPixmap(themedIcon(QStringLiteral("empty-list"))
                             .pixmap(QSize(pictureSize, pictureSize), devicePixelRatioF()));
}

} // namespace oblino
