#include <tools/windows/viewcontrollerwhiteboard.h>

#include <controls/icons.h>
#include <controls/undoaction.h>
#include <tools/windows/boardview.h>
#include <ui_viewcontrollerwhiteboard.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>

namespace oblino {

void ViewControllerWhiteboard::connectCommands()
{
    m_ui->undoAction->setIcon(themedIcon(QStringLiteral("undo")));
    m_ui->redoAction->setIcon(themedIcon(QStringLiteral("redo")));
    m_ui->copyAction->setIcon(themedIcon(QStringLiteral("copy")));
    m_ui->undoButton->setDefaultAction(m_ui->undoAction);
    m_ui->redoButton->setDefaultAction(m_ui->redoAction);
    connect(m_ui->undoAction, &QAction::triggered, this, [this] { step(&BoardHistory::undo); });
    connect(m_ui->redoAction, &QAction::triggered, this, [this] { step(&BoardHistory::redo); });
    connect(m_ui->copyAction, &QAction::triggered, this,
            [this] { QGuiApplication::clipboard()->setImage(picture()); });
    showSteps();
}

QImage ViewControllerWhiteboard::shown() const
{
    return m_ui->whiteboard->image();
}

void ViewControllerWhiteboard::record(const QString &name, const QImage &before)
{
    m_history.record(name, before, shown());
    showSteps();
}

void ViewControllerWhiteboard::forgetSteps()
{
    m_history.clear();
    showSteps();
}

void ViewControllerWhiteboard::showSteps()
{
    showUndoStep(*m_ui->undoAction, m_history.undoName());
    showRedoStep(*m_ui->redoAction, m_history.redoName());
}

// Like a stroke it is in the file at once. The picture goes there itself, not as it is shown: one of another
// scale would lose by that.
void ViewControllerWhiteboard::step(QImage (BoardHistory::*direction)(const QImage &))
{
    if (isDrawing())
        return;
    const QImage image = (m_history.*direction)(shown());
    m_ui->whiteboard->setImage(image);
    showSteps();
    m_unsaved = {};
    m_isChanged = true;
    savePNG(image.isNull() ? picture() : image, WhiteboardFile::name);
}

// Asked for by key, the menu opens in the middle of the board, whatever control has the focus.
void ViewControllerWhiteboard::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QRect board = m_ui->whiteboard->geometry();
    if (isDrawing() || (!isByKey && !board.contains(event->pos())))
        return;
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("boardMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({m_ui->undoAction, m_ui->redoAction});
    menu->addSeparator();
    menu->addAction(m_ui->copyAction);
    for (QPushButton *button : {m_ui->shareButton, m_ui->revertButton, m_ui->deleteButton}) {
        QAction *action = menu->addAction(button->icon(), button->text(), button, &QPushButton::click);
        action->setToolTip(button->toolTip());
    }
    menu->popup(isByKey ? mapToGlobal(board.center()) : event->globalPos());
}

} // namespace oblino
