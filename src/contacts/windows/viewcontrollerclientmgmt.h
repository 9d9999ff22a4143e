#pragma once

#include <contacts/windows/contactwindow.h>

namespace oblino {

namespace Ui {
class ViewControllerClientMgmt;
}

/// The window in which the clients are managed.
class ViewControllerClientMgmt : public ContactWindow
{
    Q_OBJECT

public:
    explicit ViewControllerClientMgmt(const QString &folder = contactsFolder(), QWidget *parent = nullptr,
                                      std::chrono::milliseconds retryInterval = std::chrono::seconds(10));
    ~ViewControllerClientMgmt() override;

    void loadView();

    // What the controls call

    void AddCient(QObject *sender);
    void RemoveClient(QObject *sender);
    void resetData(QObject *sender);
    void nameChange(QObject *sender);
    void okpressed(QObject *sender);

private:
    std::unique_ptr<Ui::ViewControllerClientMgmt> m_ui;

    // Outlets

    ContactTable *clientTable = nullptr;
    ContactList *clientTableArray = nullptr;
};

} // namespace oblino
