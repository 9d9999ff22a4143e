#include <controls/descriptionview.h>

#include <controls/theme.h>

#include <base/fieldtext.h>

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QToolTip>

namespace oblino {

DescriptionView::DescriptionView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
}

void DescriptionView::setTextColor(const Color &color)
{
    m_textColor = color;
    QPalette colors = palette();
    colors.setColor(QPalette::Text, screenColor(color));
    setPalette(colors);
}

void DescriptionView::keyPressEvent(QKeyEvent *event)
{
    if (!refuses(event->text()))
        QPlainTextEdit::keyPressEvent(event);
}

void DescriptionView::insertFromMimeData(const QMimeData *source)
{
    if (!refuses(source->text()))
        QPlainTextEdit::insertFromMimeData(source);
}

void DescriptionView::inputMethodEvent(QInputMethodEvent *event)
{
    if (!refuses(event->commitString()))
        QPlainTextEdit::inputMethodEvent(event);
}

bool DescriptionView::refuses(const QString &text)
{
    if (isFieldText(text))
        return false;
    QToolTip::showText(mapToGlobal(cursorRect().bottomLeft()), fieldTextError(), this);
    return true;
}

} // namespace oblino
