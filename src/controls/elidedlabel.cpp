#include <controls/elidedlabel.h>

#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

namespace oblino {

ElidedLabel::ElidedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    if (shownText() != text())
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), Qt::convertFromPlainText(text()),
                           this);
    else
        QToolTip::hideText();
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), static_cast<int>(Qt::AlignVCenter | Qt::TextSingleLine), shownText());
}

QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

} // namespace oblino
