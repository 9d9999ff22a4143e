#pragma once

#include <contacts/windows/contactwindow.h>

namespace oblino {

namespace Ui {
class ViewControllerTeamMgmt;
}

/// The window in which the team members are managed.
class ViewControllerTeamMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerTeamMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                    std::chrono::milliseconds retryInterval = std::chrono::seconds(10));
    ~ViewControllerTeamMgmt() override;

    void viewDidLoad();

    // What the controls call

    void AddTeamMember(QObject *sender);
    void RemoveTeamMember(QObject *sender);
    void OkPressed(QObject *sender);

private:
    std::unique_ptr<Ui::ViewControllerTeamMgmt> m_ui;

    // Outlets

    ContactTable *teamTable = nullptr;
};

} // namespace oblino
