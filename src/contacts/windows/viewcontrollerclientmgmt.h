#pragma once

#include <contacts/persistentcontainer.h>
#include <contacts/windows/contactwindow.h>

namespace oblino {

/// The window in which the clients are managed.
class ViewControllerClientMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerClientMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                      std::chrono::milliseconds retryInterval = std::chrono::seconds(10));

    void loadView();

    // What the controls call

    void AddCient(QObject *sender);
    void RemoveClient(QObject *sender);
    void resetData(QObject *sender);
    void nameChange(QObject *sender) override;
    void okpressed(QObject *sender);
};

} // namespace oblino
