#pragma once

#include <ui/windows/tablelook.h>
#include <ui/windows/tasktablemodel.h>

#include <base/unsavedwork.h>
#include <core/sortdescriptor.h>
#include <core/task.h>
#include <core/tasklistfile.h>
#include <core/taskplaces.h>
#include <core/taskstep.h>
#include <files/filewatch.h>

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <QSet>

#include <functional>
#include <memory>
#include <utility>

class QAction;
class QActionGroup;
class QComboBox;
class QLabel;
class QMenu;
class QToolButton;

namespace oblino {

namespace Ui {
class ViewController;
}

class EmptyState;
class FetchRequest;
class NamedFilters;
class NoticeBar;
class NotificationCenter;
class SearchField;
class ViewControllerAdd;
struct TaskWindowContext;
class TaskManager;
class TaskTable;
class TaskUndo;
class UIUtil;

/// The main window: turns the user's actions into operations of the task store, keeps table and commands in
/// step with it, and has the list saved after every change.
class ViewController : public QMainWindow, public UnsavedWork
{
    Q_OBJECT

public:
    /// @param dataFolder  where the contact store lies, which the forms of tasks open
    ViewController(TaskManager &store, Documents &documents, UIUtil &utilities,
                   NotificationCenter &notifications, const QString &dataFolder, QWidget *parent = nullptr);
    ~ViewController() override;

    // Commands

    void ChangeView();
    void search();
    void upper();
    void downer();
    void hideClicked();
    void btnDeleteTask_Click(QObject *sender);
    void cloneTask(QObject *sender);
    void closeTask(QObject *sender);
    void reopenTask();
    void sharingTask(QObject *sender);
    void newTask();
    void editTask();
    void doubleClickTable();
    void doubleClickOnResultRow();
    void addEnhancement(QObject *sender);
    void UpdateToCloud(QObject *sender);
    void UpdateFromCoud(QObject *sender);

    /// Sets what is called before a command that uses the cloud. It asks the user for what the cloud lacks,
    /// and answers whether the command may go on.
    void setBeforeCloud(std::function<bool()> beforeCloud) { m_beforeCloud = std::move(beforeCloud); }

    // What others tell the window

    void reloadTableData();
    void updateComplete();
    void interfaceModeChanged();

    // The task list file

    bool saveToFile();
    [[nodiscard]] QString readFromFile();
    QString splitStringFile(const QString &joinedStr);

    [[nodiscard]] TaskListFile &taskListFile() { return m_file; }

    /// Takes up what another program has made of the file, at once or when the forms that are open are
    /// closed.
    void lookAtFile();

    // The list as unsaved work

    [[nodiscard]] QString workTitle() const override;
    [[nodiscard]] bool isUnsaved() const override { return m_file.hasUnsavedChanges(); }
    [[nodiscard]] QString saveNow() override;
    [[nodiscard]] QByteArray unsavedContent() const override { return m_file.text(); }
    [[nodiscard]] QString unsavedFileName() const override { return TaskListFile::name; }
    [[nodiscard]] QString rescue() override;

    /// Sets the filters that the user has kept; they outlive the window. Without them none can be kept.
    void setNamedFilters(NamedFilters &filters);
    /// Follows when they have changed.
    void listKeptFilters();

    [[nodiscard]] TableLook look() const;
    /// Shows the table so; what of it makes no sense is left as it is.
    void setLook(const TableLook &look);

    /// Brings the window in front of the others.
    void comeToFront();

    /// Sets what is called before the window closes. It answers whether the application may end.
    void setQuitGuard(std::function<bool()> guard) { m_quitGuard = std::move(guard); }

    /// Closes the forms without a question, as the program ends.
    void giveUpForms();

    /// Tells the user what has happened, in whole sentences.
    void tell(const QStringList &notices);
    /// Tells the user what is wrong with something for as long as it is; with an empty sentence nothing is.
    void setTrouble(const QString &thing, const QString &sentence);
    /// What the window tells the user at this moment; usually nothing.
    [[nodiscard]] QString notice() const;

Q_SIGNALS:
    /// The user was told something.
    void told(const QString &notice);
    /// The window was closed, which ends the application.
    void terminationRequested();
    void clientsRequested();
    void teamMembersRequested();
    void sendingRequested();
    void messagingSettingsRequested();
    void cloudAccountRequested();
    void notesRequested();
    void whiteboardRequested();
    void earlierVersionsRequested();
    void eraserRequested();
    void startPageRequested();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // Life cycle

    void viewDidLoad();
    void viewWillAppear();
    bool windowShouldClose();

    // The table

    /// Applies the current view and counts it.
    [[nodiscard]] qsizetype numberOfRows();
    void sortDescriptorsDidChange(int section, Qt::SortOrder order);
    void tableViewSelectionDidChange();

    void disableSelectionButtons();
    void enableSelectionButtons();
    void reinitForSearching();

    // Setting up

    void bindOutlets();
    void connectCommands();
    void fillViews();
    void fillSortMenu();
    void addContextMenus();
    void prepareTable();

    // Helpers

    void reload();
    void restoreSelection(const QString &key);
    void changeList();
    void showAdded();
    void showMessage(const QString &message);
    void endSearch();
    void sortBy(const SortDescriptor &order);
    void sortByDateAndTime();
    void setKeepsOrder(bool keeps);
    void keepOrder();
    void orderByHand();
    void moveSelected(bool up, const QString &elsewhereMessage);
    void moveRows(int before);
    [[nodiscard]] QString reorderHint() const;
    [[nodiscard]] int rowOfToday() const;
    void goToToday();
    void closeOrReopen();
    void showHideCommand(bool hidden);
    void showCloseCommand(bool closed);
    void setSelectionCommandsEnabled(bool enabled);
    void invalidateSortOrder();
    void reverseOrder();
    void showReplayed(const QString &key, const QString &said);
    void find();
    void copyTask();
    void copyKey();
    void showShortcuts();
    void about();
    void holdCommands();
    void releaseCommands();
    void showCloudProgress(int percent);
    void showCloudCause(const QString &cause);
    void showNotices();
    void takeUpChanges();
    void showChangedList(const QString &selectedKey);
    void showOn(const QString &selectedKey);
    void dayChanged();
    [[nodiscard]] bool isFormOpen() const;
    void showCounts();
    void showDue();
    void applyFilter(qsizetype rowsInView);
    void connectFilter();
    void showFilter(bool isShown);
    void fillFilterNames();
    void keepFilter();
    void chooseKeptFilter(const QString &name);
    [[nodiscard]] bool isFiltered() const;
    [[nodiscard]] int storeRow(int row) const;
    [[nodiscard]] QString keyOfShownSelection() const;
    [[nodiscard]] bool showsSelection() const { return !keyOfShownSelection().isEmpty(); }
    [[nodiscard]] int rowOfKey(const QString &key) const;
    [[nodiscard]] int viewIndex() const;
    [[nodiscard]] TaskWindowContext formContext();

    // Several tasks at once

    [[nodiscard]] TaskPlaces selectedPlaces() const;
    [[nodiscard]] TaskPlaces placesStillOf(const TaskPlaces &places, const QStringList &keys) const;
    [[nodiscard]] bool isManySelected() const;
    void changeMany(ChangeKind kind, const std::function<void(task &)> &change);
    void hideMany(bool hide);
    void closeMany();
    void reopenMany();
    void deleteMany();
    void copyMany();
    void askForName(const QString &title, const FetchRequest &directory, QString task::*field);
    void changeClient();
    void changeTeamMember();
    void moveByDays();
    void changeColor();
    void repeatTask();

    std::unique_ptr<Ui::ViewController> m_ui;
    TaskManager &m_store;
    UIUtil &m_utilities;
    NotificationCenter &m_notifications;
    TaskListFile m_file;
    FileWatch m_watch;
    TaskTableModel m_model;
    TaskUndo *m_undo;
    QList<int> m_filteredRows; // rows of the view that the filter admits; none while there is none
    NamedFilters *m_keptFilters = nullptr;
    QMenu *m_filtersMenu = nullptr;
    QMenu *m_columnsMenu = nullptr;
    int m_view = 0; // the last that was chosen
    QList<SortDescriptor> m_sortPrototypes;
    QString m_dataFolder;
    QPointer<ViewControllerAdd> m_addForm;
    QHash<QAction *, QString> m_toolTips; // of commands while they are enabled
    QSet<QString> m_added;                // keys of tasks that the table is to lead to
    QString m_said;                       // in the status line, by this window itself
    SortDescriptor m_order;               // by which the table was sorted last
    bool m_keepsOrder = false;            // when the list changes
    QAction *m_dateAndTime = nullptr;
    QActionGroup *m_views = nullptr;
    std::function<bool()> m_quitGuard = [] { return true; };
    std::function<bool()> m_beforeCloud = [] { return true; };
    bool m_deletionHasAsked = false;
    QString m_waitingFor = tr("Waiting for the cloud"); // the start of a message
    QList<QAction *> m_heldCommands;                    // disabled while the cloud is waited for

    QLabel *statusMessage = nullptr;
    QLabel *statusMessageLabel = nullptr;
    QLabel *m_saveState = nullptr;
    QLabel *m_due = nullptr;
    EmptyState *m_emptyState = nullptr;
};

} // namespace oblino
