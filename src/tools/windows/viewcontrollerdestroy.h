#pragma once

#include <base/datakind.h>
#include <controls/toolwindow.h>

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QCheckBox;

namespace oblino {

namespace Ui {
class ViewControllerDestroy;
}

class Documents;
class NotificationCenter;
class ContactStore;
class TaskListFile;
class TaskManager;
class UIUtil;

/// What the data eraser works on.
struct ErasableData
{
    TaskManager &store;
    TaskListFile &taskList;
    Documents &documents;
    NotificationCenter &notifications; ///< told "reload" when the tasks were to go
    UIUtil &utilities;
    QString privateFolder; ///< where the contacts and the recovery copies lie
    /// Asks the user for what the cloud lacks; answers whether it can be used.
    std::function<bool()> beforeCloud = [] { return true; };
    /// Called when all of a kind has gone, for those who hold something of it that nobody sees.
    std::function<void(DataKind kind)> erased = [](DataKind) {};
};

/// The data eraser: destroys, after a question, the kinds of data whose boxes are on, with the copies that
/// the program has kept of them. A kind that fails does not stop the others. What an open pad or board shows
/// is not touched, and written again when that window next saves. Nothing is erased while the cloud is waited
/// for.
class ViewControllerDestroy : public ToolWindow
{
    Q_OBJECT

public:
    explicit ViewControllerDestroy(ErasableData erasable, QWidget *parent = nullptr);
    ~ViewControllerDestroy() override;

    // What the controls call

    void pressAll(QObject *sender);
    void OKErase(QObject *sender);

protected:
    [[nodiscard]] bool windowShouldClose() override { return !m_isErasing; }

private:
    struct Category
    {
        DataKind kind;
        QCheckBox *box;
        const char *listLine;
        std::function<bool()> erase; // returns whether all of it went
        bool *isChosen;              // for the erasure under way
    };

    void viewDidLoad();
    [[nodiscard]] ContactStore &persistentContainer();

    void holdWhileCloudIsWaitedFor();
    void eraseChosen();
    [[nodiscard]] bool eraseTasks();
    [[nodiscard]] bool eraseNotes();
    [[nodiscard]] bool eraseWhiteboard();
    template<typename Contact>
    [[nodiscard]] bool eraseContacts(const QString &errorMessage);
    [[nodiscard]] bool eraseSettings();
    [[nodiscard]] bool eraseCloud();
    [[nodiscard]] bool hasGone(const QString &errorMessage, const QString &error);
    void showCloudProgress(int percent);

    ErasableData m_data;
    std::unique_ptr<Ui::ViewControllerDestroy> m_ui;
    std::vector<Category> m_categories; // in the order in which they are listed and erased
    std::unique_ptr<ContactStore> m_container;
    ContactStore *managedObjectContext = nullptr;
    QString m_storeError; // why there is no context
    bool m_isErasing = false;

    bool dTask = false;
    bool dNotes = false;
    bool dWhiteboard = false;
    bool dClients = false;
    bool dTeamMembers = false;
    bool dSettings = false;
    bool dICloud = false;
};

} // namespace oblino
