// What the window of earlier versions does to them.
#include <tools/windows/earlierversionswindow.h>

#include <base/noticelog.h>
#include <base/notificationcenter.h>
#include <core/tasklistfile.h>
#include <tools/notesfile.h>
#include <tools/restoring.h>
#include <ui/uiutil.h>
#include <ui_earlierversionswindow.h>

namespace oblino {

void EarlierVersionsWindow::restore()
{
    EarlierVersions kept = versions();
    if (kind() != DataKind::Tasks)
        finishRestoring(restoreBytes());
    else if (isWhole(m_content.reason))
        finishRestoring(restoreList(m_data.store, m_data.taskList, kept, m_content.tasks));
    else
        finishRestoring(restoreTasks(m_data.store, m_data.taskList, kept, m_content.tasks));
}

void EarlierVersionsWindow::restoreSelectedTasks()
{
    EarlierVersions kept = versions();
    finishRestoring(restoreTasks(m_data.store, m_data.taskList, kept, m_ui->look->selectedTasks()));
}

QString EarlierVersionsWindow::restoreBytes()
{
    QString error = m_data.saveOpen(kind());
    if (!error.isEmpty())
        return error;
    EarlierVersions kept = versions();
    if (kind() == DataKind::Whiteboard) {
        SafeFile file(filePath(), m_data.privateFolder);
        for (const QString &notice : file.recover())
            m_data.notices.add(notice);
        return restoreFile(file, kept, m_content.bytes);
    }
    SafeFile *file = m_data.documents.file(NotesFile::name);
    return file ? restoreFile(*file, kept, m_content.bytes) : tr("There is no documents folder.");
}

void EarlierVersionsWindow::finishRestoring(const QString &error)
{
    if (!error.isEmpty()) {
        m_ui->resultLabel->setText(error);
        return;
    }
    if (kind() == DataKind::Tasks)
        m_data.notifications.post(QStringLiteral("reload"));
    m_data.restored(kind());
    removeSavedRescues();
    const bool isUnsaved = kind() == DataKind::Tasks && m_data.taskList.hasUnsavedChanges();
    m_ui->resultLabel->setText(
        isUnsaved ? tr("Restored, but the list could not be saved yet. What there was before "
                       "is kept as an earlier version.")
                  : tr("Restored. What there was before is kept as an earlier version."));
    refresh();
}

// A rescued text is offered at every start until it lies in its file.
void EarlierVersionsWindow::removeSavedRescues()
{
    EarlierVersions kept = versions();
    const QByteArray saved = SafeFile(filePath(), m_data.privateFolder).look().bytes;
    for (const EarlierVersion &version : kept.rescued()) {
        if (kept.read(version).bytes == saved)
            (void)kept.remove(version);
    }
}

void EarlierVersionsWindow::removeSelected()
{
    const int row = selectedRow();
    if (row < 0)
        return;
    const EarlierVersion version = m_model.versions().at(row);
    const QString words = m_model.index(row, VersionTableModel::TimeColumn).data().toString() +
                          QLatin1Char('\n') + reasonText(version.reason);
    if (!m_data.utilities.dialogOKCancel(tr("Delete this earlier version? It cannot be brought back."),
                                         words))
        return;
    const QString error = versions().remove(version);
    m_ui->resultLabel->setText(error.isEmpty() ? tr("Deleted.") : error);
    m_model.show(kind(), versions().list());
    list(row);
}

} // namespace oblino
