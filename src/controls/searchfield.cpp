#include <controls/searchfield.h>

#include <controls/icons.h>

#include <QAction>
#include <QKeyEvent>

namespace oblino {

SearchField::SearchField(QWidget *parent)
    : QLineEdit(parent)
{
    addAction(themedIcon(QStringLiteral("search")), QLineEdit::LeadingPosition)->setText(tr("Search"));

    // In place of setClearButtonEnabled(), which reads the desktop's icon theme and holds the start up.
    QAction *emptying = addAction(themedIcon(QStringLiteral("clear")), QLineEdit::TrailingPosition);
    emptying->setText(tr("Empty the search field"));
    emptying->setVisible(false);
    connect(emptying, &QAction::triggered, this, &QLineEdit::clear);
    connect(this, &QLineEdit::textChanged, emptying,
            [emptying](const QString &text) { emptying->setVisible(!text.isEmpty()); });
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
