// The commands of the main window on the selected task.
#include <ui/windows/viewcontroller.h>

#include <config.h>

#include <controls/icons.h>
#include <controls/shortcutlist.h>
#include <ui/uiutil.h>
#include <ui/windows/filterbar.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/viewcontrolleradd.h>
#include <ui/windows/viewcontrolleredit.h>
#include <ui_viewcontroller.h>

#include <base/trace.h>
#include <core/taskmanager.h>
#include <core/taskviews.h>

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QToolButton>

namespace oblino {

namespace {

const QString selectFirst = QStringLiteral("Select a task first.");

} // namespace

void ViewController::enableSelectionButtons()
{
    setSelectionCommandsEnabled(true);
    for (QAction *action : {m_ui->moveUpAction, m_ui->moveDownAction})
        action->setEnabled(!isManySelected());
}

void ViewController::disableSelectionButtons()
{
    setSelectionCommandsEnabled(false);
}

void ViewController::setSelectionCommandsEnabled(bool enabled)
{
    const auto enable = [this](QAction *action, bool isEnabled, const QString &whyNot) {
        action->setEnabled(isEnabled);
        if (action != m_ui->hideAction) // its tool tip says which way it works
            action->setToolTip(isEnabled ? toolTipWithShortcut(m_toolTips.value(action), *action) : whyNot);
    };
    for (QAction *action :
         {m_ui->deleteAction, m_ui->hideAction, m_ui->closeAction, m_ui->copyAction, m_ui->clientOfAction,
          m_ui->teamMemberOfAction, m_ui->daysAction, m_ui->colorAction})
        enable(action, enabled, selectFirst);
    const bool isOne = enabled && !isManySelected();
    for (QAction *action :
         {m_ui->editAction, m_ui->shareAction, m_ui->cloneAction, m_ui->copyKeyAction, m_ui->repeatAction})
        enable(action, isOne, enabled ? tr("Select one task only.") : selectFirst);
}

void ViewController::showHideCommand(bool hidden)
{
    m_ui->hideAction->setIcon(
        themedIcon(hidden ? QStringLiteral("AppHideIcon") : QStringLiteral("AppShowIcon")));
    m_ui->hideAction->setText(hidden ? tr("Un&hide") : tr("&Hide"));
    m_ui->hideAction->setIconText(hidden ? tr("Unhide") : tr("Hide"));
    m_ui->hideAction->setToolTip(hidden ? QStringLiteral("UNHIDE") : QStringLiteral("HIDE"));
}

void ViewController::showCloseCommand(bool closed)
{
    m_ui->closeAction->setText(closed ? tr("Re&open") : tr("&Close"));
    m_ui->closeAction->setIconText(closed ? tr("Reopen") : tr("Close"));
    m_toolTips[m_ui->closeAction] = closed ? tr("Open the selected task again: it is not done")
                                           : tr("Close the selected task: it is done");
}

// The end of every command that changes the list.
void ViewController::changeList()
{
    showMessage({});
    keepOrder();
    reinitForSearching();
    reload();
    disableSelectionButtons();
    showAdded();
    if (m_ui->filterAction->isChecked())
        fillFilterNames();
    saveToFile();
}

void ViewController::hideClicked()
{
    if (!showsSelection())
        return;
    trace("Hide Pressed!");
    const bool hidden = m_store.getHiddenSelected();
    showHideCommand(!hidden);
    if (isManySelected())
        return hideMany(!hidden);
    if (hidden)
        m_store.unhideSelected();
    else
        m_store.hideSelected();
    changeList();
}

void ViewController::btnDeleteTask_Click(QObject *)
{
    if (!showsSelection())
        return;
    if (isManySelected())
        return deleteMany();
    const task selected = m_store.getSelectedTask();
    const bool confirmed = m_utilities.dialogYesNo(
        QStringLiteral(
            "The task will be deleted locally as well as from the iCloud if present. Are you sure you "
            "want to delete ?"),
        selected.name);
    // Asked once only: a task can be deleted here without the cloud.
    if (confirmed && !std::exchange(m_deletionHasAsked, true))
        (void)m_beforeCloud();
    // The list may have changed under the questions; only the task that was asked about goes.
    if (confirmed && m_store.setSelected(selected.key) >= 0) {
        trace("Ok Pressed!");
        m_store.deleteTaskToCloud(selected.key);
        m_store.removeSelected();
    }
    trace("Tasks:", m_store.tasks());
    changeList();
}

void ViewController::cloneTask(QObject *sender)
{
    if (!showsSelection())
        return;
    m_store.cloneSelected(sender);
    invalidateSortOrder();
    changeList();
}

void ViewController::closeTask(QObject *sender)
{
    if (!showsSelection())
        return;
    if (isManySelected())
        return closeMany();
    if (m_store.getSelectedTask().status != OpenStatus) {
        m_utilities.dialogOK(QStringLiteral("Task already closed"));
        return;
    }
    m_utilities.playSound();
    trace("Close Task");
    m_store.closeSelected(sender);
    changeList();
}

void ViewController::reopenTask()
{
    if (isManySelected())
        return reopenMany();
    if (m_store.reopenSelected())
        changeList();
}

// Of one button.
void ViewController::closeOrReopen()
{
    if (!showsSelection())
        return;
    if (m_store.getSelectedTask().status == ClosedStatus)
        reopenTask();
    else
        closeTask(m_ui->commandBar->widgetForAction(m_ui->closeAction));
}

void ViewController::addEnhancement(QObject * /*sender*/)
{
    Q_EMIT startPageRequested();
}

void ViewController::sharingTask(QObject *sender)
{
    if (showsSelection())
        m_store.shareSelected(sender);
}

TaskWindowContext ViewController::formContext()
{
    return {m_store, m_utilities, m_notifications, m_dataFolder};
}

void ViewController::newTask()
{
    if (!m_addForm) {
        m_addForm = new ViewControllerAdd(formContext(), this);
        m_addForm->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_addForm, &QDialog::finished, this, &ViewController::lookAtFile, Qt::QueuedConnection);
    }
    m_addForm->show();
    m_addForm->raise();
    m_addForm->activateWindow();
}

void ViewController::editTask()
{
    if (!showsSelection())
        return showMessage(selectFirst);
    auto *form = new ViewControllerEdit(formContext(), this);
    form->setAttribute(Qt::WA_DeleteOnClose);
    connect(form, &QDialog::finished, this, &ViewController::lookAtFile, Qt::QueuedConnection);
    form->open();
}

void ViewController::doubleClickTable()
{
    trace("Double Click");
    doubleClickOnResultRow();
}

void ViewController::doubleClickOnResultRow()
{
    const int row = m_ui->tblView->currentIndex().row();
    if (row >= 0)
        editTask();
    trace("doubleClickOnResultRow ", row);
}

void ViewController::copyTask()
{
    if (!showsSelection())
        return;
    if (isManySelected())
        return copyMany();
    QGuiApplication::clipboard()->setText(m_store.shareTextOfSelected());
    showMessage(tr("Copied “%1” as text.").arg(m_store.getSelectedTask().name));
}

void ViewController::copyKey()
{
    if (!showsSelection())
        return;
    QGuiApplication::clipboard()->setText(m_store.getSelectedTask().key);
    showMessage(tr("Task key copied."));
}

void ViewController::showShortcuts()
{
    auto *window = new ShortcutsWindow(shortcutRows(*m_ui->menuBar), this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->open();
}

void ViewController::about()
{
    auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Oblino"), {}, QMessageBox::Close, this);
    box->setObjectName(QStringLiteral("about"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    constexpr int iconSize = 64;
    box->setIconPixmap(QApplication::windowIcon().pixmap(iconSize));
    box->setTextFormat(Qt::RichText);
    box->setText(
        tr("<h3>Oblino %1</h3><p>Plan work as a list of tasks, and text clients and team members "
           "their schedules.</p><p>Its page: <a href=\"%2\">%2</a></p><p>Free software under the MIT "
           "licence; it comes without any warranty.</p>")
            .arg(QApplication::applicationVersion(), QStringLiteral(OBLINO_STORE_ADDRESS)));
    QFile licence(QStringLiteral(":/LICENSE"));
    if (licence.open(QIODevice::ReadOnly))
        box->setDetailedText(QString::fromUtf8(licence.readAll()));
    box->open();
}

} // namespace oblino
