#pragma once

#include <contacts/persistentcontainer.h>
#include <contacts/windows/contactwindow.h>

namespace oblino {

/// The window in which the team members are managed.
class ViewControllerTeamMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerTeamMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                    std::chrono::milliseconds retryInterval = std::chrono::seconds(10));

    void viewDidLoad();

    // What the controls call

    void AddTeamMember(QObject *sender);
    void RemoveTeamMember(QObject *sender);
    void OkPressed(QObject *sender);
};

} // namespace oblino
