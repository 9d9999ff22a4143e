#include <contacts/windows/viewcontrollerteammgmt.h>

#include <ui_contactwindow.h>

namespace oblino {

ViewControllerTeamMgmt::ViewControllerTeamMgmt(const QString &folder, QWidget *parent,
                                               std::chrono::milliseconds retryInterval)
    : ContactWindow({.request = TeamMembers::fetchRequest(),
                     .rescueFile = TeamMembers::rescueFile,
                     .tableName = QStringLiteral("teamTable"),
                     .title = tr("Team Members"),
                     .singular = tr("team member"),
                     .plural = tr("team members")},
                    folder, parent, retryInterval)
{
    connect(m_ui->addButton, &QPushButton::clicked, this, [this] { AddTeamMember(m_ui->addButton); });
    connect(m_ui->removeButton, &QPushButton::clicked, this,
            [this] { RemoveTeamMember(m_ui->removeButton); });
    connect(m_ui->okButton, &QPushButton::clicked, this, [this] { OkPressed(m_ui->okButton); });
    viewDidLoad();
}

} // namespace oblino
