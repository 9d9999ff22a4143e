#pragma once

#include <contacts/contactstore.h>
#include <contacts/windows/contactwindow.h>

namespace oblino {

/// The window in which the team members are managed.
class ViewControllerTeamMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerTeamMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                    std::chrono::milliseconds retryInterval = std::chrono::seconds(10));

    void viewDidLoad() { openStore(); }

    // What the controls call

    void AddTeamMember(QObject * /*sender*/) { addContact(); }
    void RemoveTeamMember(QObject * /*sender*/) { removeContacts(); }
    void OkPressed(QObject * /*sender*/) { close(); }
};

} // namespace oblino
