// The commands of the main window on the cloud copy.
#include <ui/windows/viewcontroller.h>

#include <ui/uiutil.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/taskundo.h>
#include <ui_viewcontroller.h>

#include <base/trace.h>
#include <core/changescope.h>
#include <core/taskmanager.h>

#include <QLabel>
#include <QThread>

namespace oblino {

void ViewController::UpdateToCloud(QObject *)
{
    if (!m_beforeCloud())
        return;
    endSearch(); // or only what it found would be sent
    m_waitingFor = tr("Sending to the cloud");
    m_utilities.dialogOK(m_store.syncToCloudFromLocal() ? QStringLiteral("Sync to iCloud succesfully!")
                                                        : QStringLiteral("Error sync to iCloud!"));
}

void ViewController::UpdateFromCoud(QObject *)
{
    trace("Update from Cloud");
    const bool confirmed = m_utilities.dialogYesNo(
        QStringLiteral("Do you want to update from the iCloud?"),
        QStringLiteral(
            "Your eventual changes on existing tasks will be overwritten. For security reasons, the "
            "extra tasks you may have saved locally vs what is saved in the Cloud will not be "
            "deleted. Please delete these manually as needed."));
    if (!confirmed)
        return;
    trace("Ok Pressed!");
    if (!m_beforeCloud())
        return;
    m_waitingFor = tr("Merging from the cloud");
    const bool updated = [this] {
        const ChangeScope scope(m_store, ChangeKind::Merge);
        return m_store.syncToLocalFromCloud();
    }();
    m_undo->take();
    QThread::sleep(1);
    m_utilities.dialogOK(updated ? QStringLiteral("Sync from iCloud succesfully!")
                                 : QStringLiteral("Error sync from iCloud!"));
}

// Commands would change the list that is being copied.
void ViewController::holdCommands()
{
    for (QAction *action : findChildren<QAction *>()) {
        if (action->isEnabled() && action != m_ui->quitAction && !action->menu()) {
            action->setEnabled(false);
            m_heldCommands += action;
        }
    }
    for (QWidget *widget : {static_cast<QWidget *>(m_ui->tblView), m_ui->filterBar})
        widget->setEnabled(false);
    statusMessage->setText(m_waitingFor + QStringLiteral("…"));
}

void ViewController::releaseCommands()
{
    const QString key = keyOfShownSelection();
    for (QAction *action : std::exchange(m_heldCommands, {}))
        action->setEnabled(true);
    for (QWidget *widget : {static_cast<QWidget *>(m_ui->tblView), m_ui->filterBar})
        widget->setEnabled(true);
    m_ui->tblView->setFocus(Qt::OtherFocusReason);
    m_waitingFor = tr("Waiting for the cloud"); // until a command of this window says more
    if (key.isEmpty())
        disableSelectionButtons();
    showOn(key); // the list may have changed meanwhile
}

void ViewController::showCloudProgress(int percent)
{
    statusMessage->setText(tr("%1: %2 %").arg(m_waitingFor).arg(percent));
}

// Beside the last message, whose words are those of the account's status alone.
void ViewController::showCloudCause(const QString &cause)
{
    auto *label = findChild<QLabel *>(QStringLiteral("cloudCauseLabel"));
    if (!label) {
        label = new QLabel(this);
        label->setObjectName(QStringLiteral("cloudCauseLabel"));
        label->setAccessibleName(tr("Why the cloud failed"));
        label->setTextFormat(Qt::PlainText); // words of a server
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setWordWrap(true);
        m_ui->statusBar->insertWidget(1, label, 1);
    }
    label->setText(cause);
    label->setVisible(!cause.isEmpty());
}

} // namespace oblino
