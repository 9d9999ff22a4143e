#include <tools/windows/viewcontrollerdestroy.h>

#include <base/notificationcenter.h>
#include <base/trace.h>
#include <contacts/contactstore.h>
#include <core/tasklistfile.h>
#include <core/taskmanager.h>
#include <tools/notesfile.h>
#include <tools/whiteboardfile.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollerdestroy.h>

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace oblino {

namespace {

constexpr qint64 delayAfterErasing = 1000; // ms

} // namespace

ViewControllerDestroy::ViewControllerDestroy(ErasableData erasable, QWidget *parent)
    : ToolWindow(parent)
    , m_data(std::move(erasable))
    , m_ui(std::make_unique<Ui::ViewControllerDestroy>())
{
    m_ui->setupUi(this);
    m_categories = {
        {DataKind::Tasks, m_ui->deleteTasks, "\nTasks", [this] { return eraseTasks(); }, &dTask},
        {DataKind::Notes, m_ui->deleteNotes, "\nNotes", [this] { return eraseNotes(); }, &dNotes},
        {DataKind::Whiteboard, m_ui->deleteWhiteboard, "\nWhiteboard", [this] { return eraseWhiteboard(); },
         &dWhiteboard},
        {DataKind::Clients, m_ui->deleteClients, "\nClients",
         [this] { return eraseContacts<Clients>(QStringLiteral("Error Deleting Clients Records")); },
         &dClients},
        {DataKind::TeamMembers, m_ui->deleteTeamMembers, "\nTeamMembers",
         [this] { return eraseContacts<TeamMembers>(QStringLiteral("Error Deleting Team Members Records")); },
         &dTeamMembers},
        {DataKind::Settings, m_ui->deleteSettings, "\nSettings", [this] { return eraseSettings(); },
         &dSettings},
        {DataKind::Cloud, m_ui->deleteICloud, "\niCloud", [this] { return eraseCloud(); }, &dICloud},
    };
    connect(m_ui->deleteAll, &QCheckBox::clicked, this, [this] { pressAll(m_ui->deleteAll); });
    connect(m_ui->eraseButton, &QPushButton::clicked, this, [this] { OKErase(m_ui->eraseButton); });
    connect(m_ui->closeButton, &QPushButton::clicked, this, &QDialog::close);
    for (const auto change : {&TaskManager::cloudWaitBegan, &TaskManager::cloudWaitEnded})
        connect(&m_data.store, change, this, &ViewControllerDestroy::holdWhileCloudIsWaitedFor);
    holdWhileCloudIsWaitedFor();
    viewDidLoad();
}

ViewControllerDestroy::~ViewControllerDestroy() = default;

void ViewControllerDestroy::viewDidLoad()
{
    m_storeError = persistentContainer().loadTraced().error;
    managedObjectContext = persistentContainer().viewContext();
}

ContactStore &ViewControllerDestroy::persistentContainer()
{
    if (!m_container)
        m_container = std::make_unique<ContactStore>(m_data.privateFolder);
    return *m_container;
}

// A list on its way to the cloud would go on arriving there after it was erased.
void ViewControllerDestroy::holdWhileCloudIsWaitedFor()
{
    const bool isHeld = m_data.store.isWaitingForCloud();
    m_ui->eraseButton->setEnabled(!isHeld);
    m_ui->eraseButton->setToolTip(isHeld ? tr("The cloud is being waited for.")
                                         : tr("Destroy what is chosen, after a question"));
}

void ViewControllerDestroy::pressAll(QObject * /*sender*/)
{
    for (const Category &category : m_categories)
        category.box->setChecked(m_ui->deleteAll->isChecked());
}

void ViewControllerDestroy::OKErase(QObject * /*sender*/)
{
    QString list;
    for (Category &category : m_categories) {
        *category.isChosen = category.box->isChecked();
        list += QLatin1String(*category.isChosen ? category.listLine : "");
    }
    if (list.isEmpty()) {
        close();
        return;
    }
    m_ui->resultLabel->clear();
    if (m_data.utilities.dialogYesNo(
            QStringLiteral("The following selected data will be destroyed and will not be able to be "
                           "recovered. Are you sure you want to delete ?"),
            list)) {
        trace("Ok Pressed!");
        eraseChosen();
    }
    for (const Category &category : m_categories)
        category.box->setChecked(false);
}

void ViewControllerDestroy::eraseChosen()
{
    m_isErasing = true;
    QStringList left;
    for (const Category &category : m_categories) {
        if (!*category.isChosen)
            continue;
        if (category.erase())
            m_data.erased(category.kind);
        else
            left += category.box->text().remove(QLatin1Char('&'));
    }
    m_isErasing = false;
    m_ui->resultLabel->setText(left.isEmpty() ? tr("Everything that you chose is gone.")
                                              : tr("Not erased: %1.").arg(left.join(QLatin1String(", "))));
    if (left.isEmpty())
        m_data.utilities.dialogOK(QStringLiteral("All Selected Records Deleted Successfully!"));
    if (dTask)
        m_data.notifications.post(QStringLiteral("reload"));
}

bool ViewControllerDestroy::eraseTasks()
{
    const QString error = m_data.taskList.erase();
    if (error.isEmpty())
        m_data.store.removeAll();
    else
        trace(error);
    return hasGone(QStringLiteral("Error Deleting Tasks File:") + m_data.taskList.path(), error);
}

bool ViewControllerDestroy::eraseNotes()
{
    Documents &documents = m_data.documents;
    return hasGone(QStringLiteral("Error Deleting Notes File:") + documents.path(NotesFile::name),
                   documents.erase(NotesFile::name));
}

bool ViewControllerDestroy::eraseWhiteboard()
{
    QString error = WhiteboardFile(m_data.privateFolder).erase(WhiteboardFile::name);
    if (!QFileInfo::exists(WhiteboardFile::name)) {
        const QString left =
            WhiteboardFile::versions(m_data.privateFolder, m_data.documents.folder().value_or(QString()))
                .removeAll();
        error = error.isEmpty() ? left : error;
    }
    return hasGone(QStringLiteral("Error Deleting Whiteboard File:") + QDir::currentPath() +
                       WhiteboardFile::name,
                   error);
}

template<typename Contact>
bool ViewControllerDestroy::eraseContacts(const QString &errorMessage)
{
    if (!managedObjectContext)
        return hasGone(errorMessage, m_storeError);
    QString error = managedObjectContext->batchDelete(Contact::fetchRequest());
    if (error.isEmpty())
        error = m_data.documents.versions(Contact::rescueFile).removeAll();
    return hasGone(errorMessage, error);
}

bool ViewControllerDestroy::eraseSettings()
{
    const QString error = m_data.store.eraseSettingsCopies();
    m_data.store.setTwilioSecret({});
    m_data.store.setTwilioSID({});
    m_data.store.setTwilioSendingPhoneNo({});
    m_data.store.setNotification(false);
    m_data.store.setMessageTitle({});
    m_data.store.setTestOhoneNo({});
    m_data.store.setOverwrite(false);
    m_data.store.setMessageFooter({});
    m_data.store.setDelay(delayAfterErasing);
    return m_data.store.saveSettings() && error.isEmpty();
}

bool ViewControllerDestroy::eraseCloud()
{
    if (!m_data.beforeCloud())
        return false;
    setEnabled(false); // the event loop runs meanwhile
    showCloudProgress(0);
    const QMetaObject::Connection progress = connect(&m_data.store, &TaskManager::cloudProgressed, this,
                                                     &ViewControllerDestroy::showCloudProgress);
    const bool erased = m_data.store.deleteAllTasksToCloud();
    disconnect(progress);
    setEnabled(true);
    return erased;
}

bool ViewControllerDestroy::hasGone(const QString &errorMessage, const QString &error)
{
    if (!error.isEmpty())
        m_data.utilities.dialogOK(errorMessage + QLatin1Char('\n') + error);
    return error.isEmpty();
}

void ViewControllerDestroy::showCloudProgress(int percent)
{
    m_ui->resultLabel->setText(tr("Erasing the tasks in the cloud: %1 %").arg(percent));
}

} // namespace oblino
