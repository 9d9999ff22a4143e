#pragma once

#include <contacts/contactstore.h>
#include <contacts/windows/contactwindow.h>

namespace oblino {

/// The window in which the clients are managed.
class ViewControllerClientMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerClientMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                      std::chrono::milliseconds retryInterval = std::chrono::seconds(10));

    void loadView() { openStore(); }

    // What the controls call

    void AddCient(QObject * /*sender*/) { addContact(); }
    void RemoveClient(QObject * /*sender*/) { removeContacts(); }
    void resetData(QObject * /*sender*/) {}
    void nameChange(QObject *sender) override;
    void okpressed(QObject * /*sender*/) { close(); }
};

} // namespace oblino
