#pragma once

#include <contacts/contactstore.h>
#include <controls/toolwindow.h>
#include <messaging/sendingrun.h>
#include <messaging/sendingstate.h>

#include <atomic>
#include <memory>

namespace oblino {

namespace Ui {
class ViewControllerSending;
}

class ContactList;
class ContactTable;
class TaskManager;
class UIUtil;

/// The window from which messages are sent: schedules to the selected clients or team members, or one text to
/// all who are selected. A run that it has started goes on when it is closed.
class ViewControllerSending : public ToolWindow
{
    Q_OBJECT

public:
    // The state of the run, one for the whole application

    static inline std::atomic<qint64> &progressIndex = SendingState::progressIndex;
    static inline std::atomic<qint64> &noOfSchedules = SendingState::noOfSchedules;
    static inline std::atomic<bool> &success = SendingState::success;
    [[nodiscard]] static QString lastResponse() { return SendingState::lastResponse(); }

    /// Tells of the last message of a run where it failed. For runs that end while there is no window.
    static void tellFailure(UIUtil &utilities);

    /// @param contacts  the folder of the contact store
    ViewControllerSending(TaskManager &store, UIUtil &utilities, SendingRun &run,
                          const QString &contacts = contactsFolder(), QWidget *parent = nullptr);
    ~ViewControllerSending() override;

    // Life cycle

    void viewDidLoad();
    /// Shows the contacts that the store holds now.
    void reload();

    void viewDidAppear() override;
    void viewWillDisappear() override;
    void dataErased(DataKind kind) override;

    // What the controls call

    void selectClients(QObject *sender);
    void selectTeamMembers(QObject *sender);
    void SendScheduleToClients(QObject *sender);
    void SendScheduleToTeamMembers(QObject *sender);
    void sendSingleSMSToClientTeamMember(QObject *sender);
    void closeSending(QObject *sender);

private:
    void connectControls();
    void prepare(ContactTable *table, ContactList *list, const FetchRequest &request,
                 const QString &emptyMessage);
    template<typename Contact>
    [[nodiscard]] QList<Contact> selected(const ContactTable *table) const;
    [[nodiscard]] bool isConfirmed(const QString &question, const QString &text);
    [[nodiscard]] bool areDaysReadable();
    void sendSchedules(SendingJob job, const QString &nobodySelected);
    void start(const SendingJob &job);
    void showRange(const SendingJob &job);
    void showProgress();
    void showEnd();
    void showSelection();
    void showLength();
    void setSendingEnabled(bool schedules, bool text);

    TaskManager &m_store;
    UIUtil &m_utilities;
    SendingRun &m_run;
    QString m_contacts;
    std::unique_ptr<Ui::ViewControllerSending> m_ui;
    std::unique_ptr<ContactStore> persistentContainer;
    ContactStore *managedObjectContext = nullptr; // none without a store
    ContactList *clientsArray;
    ContactList *teamMembersArray;
};

} // namespace oblino
