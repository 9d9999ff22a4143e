#include <contacts/windows/viewcontrollerteammgmt.h>

#include <contacts/windows/contacttable.h>
#include <ui_viewcontrollerteammgmt.h>

namespace oblino {

ViewControllerTeamMgmt::ViewControllerTeamMgmt(const QString &folder, QWidget *parent,
                                               std::chrono::milliseconds retryInterval)
    : ContactWindow(folder, parent, retryInterval)
    , m_ui(std::make_unique<Ui::ViewControllerTeamMgmt>())
{
    m_ui->setupUi(this);
    viewDidLoad();
}

ViewControllerTeamMgmt::~ViewControllerTeamMgmt()
{
    saveAtEnd();
}

void ViewControllerTeamMgmt::viewDidLoad()
{
    teamTable = m_ui->teamTable;
    connect(m_ui->addButton, &QPushButton::clicked, this, [this] { AddTeamMember(m_ui->addButton); });
    connect(m_ui->removeButton, &QPushButton::clicked, this,
            [this] { RemoveTeamMember(m_ui->removeButton); });
    connect(m_ui->okButton, &QPushButton::clicked, this, [this] { OkPressed(m_ui->okButton); });
    openStore(
        {teamTable, new ContactList(this), m_ui->addButton, m_ui->removeButton}, TeamMembers::fetchRequest(),
        {.plural = tr("team members"), .title = tr("The team members"), .file = TeamMembers::rescueFile});
}

void ViewControllerTeamMgmt::AddTeamMember(QObject * /*sender*/)
{
    addContact();
}

void ViewControllerTeamMgmt::RemoveTeamMember(QObject * /*sender*/)
{
    removeContacts();
}

void ViewControllerTeamMgmt::OkPressed(QObject * /*sender*/)
{
    close();
}

} // namespace oblino
