#include <ui/searchfield.h>

#include <ui/icons.h>

#include <QAction>
#include <QKeyEvent>

namespace oblino {

SearchField::SearchField(QWidget *parent)
    : QLineEdit(parent)
{
    addAction(themedIcon(QStringLiteral("search")), QLineEdit::LeadingPosition);
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        clear();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        Q_EMIT left();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace oblino
