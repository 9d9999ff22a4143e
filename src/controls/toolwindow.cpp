#include <controls/toolwindow.h>

#include <controls/windowsize.h>

#include <QShowEvent>

namespace oblino {

ToolWindow::ToolWindow(QWidget *parent, QSize leastSize)
    : QDialog(parent)
    , m_leastSize(leastSize)
{
}

void ToolWindow::reject()
{
    if (windowShouldClose())
        QDialog::reject();
}

void ToolWindow::showEvent(QShowEvent *event)
{
    if (event->spontaneous())
        return QDialog::showEvent(event);
    if (!m_leastSize.isEmpty())
        setLeastSize(*this, m_leastSize);
    viewWillAppear();
    QDialog::showEvent(event);
    viewDidAppear();
}

void ToolWindow::hideEvent(QHideEvent *event)
{
    if (event->spontaneous())
        return QDialog::hideEvent(event);
    viewWillDisappear();
    QDialog::hideEvent(event);
    viewDidDisappear();
}

} // namespace oblino
