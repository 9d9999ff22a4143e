#pragma once

#include <core/cellidentifiers.h>
#include <core/cloudoperations.h>
#include <core/sortdescriptor.h>
#include <core/task.h>
#include <core/tasklist.h>

#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace oblino {

class Appearance;
class ColorWell;
class Defaults;
class SharingPicker;
class TextView;

/// The task store: the task list, the list that the main window shows, the full list while a search is
/// active, the selection, the default times of new tasks, and the settings. It is used on the user-interface
/// thread alone, except for the settings, and neither writes files nor tells anybody of a change.
///
/// The selected list is backupTasks() while searching and tasks() otherwise; selected() indexes it.
/// Operations on the selected task do nothing where nothing is selected.
class TaskManager : public QObject
{
    Q_OBJECT

public:
    using CellIdentifiers = oblino::CellIdentifiers;

    /// The keys of the settings.
    struct defaultsKeys
    {
        static inline const QString keyOne = QStringLiteral("twilioSID");
        static inline const QString keyTwo = QStringLiteral("twillioSecret");
        static inline const QString keyThree = QStringLiteral("twillioSendingPhoneNo");
        static inline const QString keyFour = QStringLiteral("twillioNotifications");
        static inline const QString keyFive = QStringLiteral("twillioMessageTitle");
        static inline const QString keySix = QStringLiteral("twillioOverwrite");
        static inline const QString keySeven = QStringLiteral("twillioTestPhoneNo");
        static inline const QString keyEight = QStringLiteral("twillioMessageFooter");
        static inline const QString keyNine = QStringLiteral("twillioDelay");
    };

    explicit TaskManager(Defaults &userDefaults, Appearance &appearance, QObject *parent = nullptr);

    // Lists and state

    [[nodiscard]] const QList<task> &tasks() const { return m_list.tasks(); }
    void setTasks(const QList<task> &tasks) { m_list.setTasks(tasks); }
    [[nodiscard]] QList<task> tasksInView() const { return m_list.tasksInView(); }
    void setTasksInView(const QList<task> &tasks) { m_list.setTasksInView(tasks); }
    /// The same row by row, without a copy of the tasks.
    [[nodiscard]] qsizetype countInView() const { return m_list.countInView(); }
    [[nodiscard]] const task &taskInView(qsizetype row) const { return m_list.taskInView(row); }
    [[nodiscard]] const QList<task> &backupTasks() const { return m_list.backup(); }
    void setBackupTasks(const QList<task> &tasks) { m_list.setBackup(tasks); }
    /// Every task, whether a search is active or not.
    [[nodiscard]] const QList<task> &fullList() const { return m_list.all(); }
    /// Index of the selected task in the selected list, -1 when nothing is selected.
    [[nodiscard]] qint64 selected() const { return m_list.selected(); }
    void setSelected(qint64 index) { m_list.setSelected(index); }

    [[nodiscard]] const DefaultTimes &defaultTimes() const { return m_defaultTimes; }
    void setDefaultTimes(const DefaultTimes &times) { m_defaultTimes = times; }
    [[nodiscard]] qint64 defaultStartHour() const { return m_defaultTimes.startHour; }
    void setDefaultStartHour(qint64 hour) { m_defaultTimes.startHour = hour; }
    [[nodiscard]] qint64 defaultStartMin() const { return m_defaultTimes.startMin; }
    void setDefaultStartMin(qint64 minute) { m_defaultTimes.startMin = minute; }
    [[nodiscard]] qint64 defaultEndHour() const { return m_defaultTimes.endHour; }
    void setDefaultEndHour(qint64 hour) { m_defaultTimes.endHour = hour; }
    [[nodiscard]] qint64 defaultEndMin() const { return m_defaultTimes.endMin; }
    void setDefaultEndMin(qint64 minute) { m_defaultTimes.endMin = minute; }

    /// The last status message, for the main window's status line.
    [[nodiscard]] QString lastMessage() const { return m_lastMessage; }
    void setLastMessage(const QString &message) { m_lastMessage = message; }

    [[nodiscard]] bool isSearching() const { return m_list.isSearching(); }
    /// Entering a search keeps the full list aside; leaving it brings the full list back, with every change
    /// made to it meanwhile.
    void setIsSearching(bool searching) { m_list.setIsSearching(searching); }
    [[nodiscard]] QString searchTerm() const { return m_searchTerm; }
    void setSearchTerm(const QString &term) { m_searchTerm = term; }
    /// During a search makes tasks() those of backupTasks() that match searchTerm().
    void search() { m_list.search(m_searchTerm); }

    // Settings; safe to call from any thread

    void setTwilioSID(const QString &twilioSID);
    void setTwilioSecret(const QString &twillioSecret);
    void setTwilioSendingPhoneNo(const QString &twillioSendingPhoneNo);
    [[nodiscard]] QString getTwilioSID() const;
    [[nodiscard]] QString getTwilioSecret() const;
    [[nodiscard]] QString getTwilioSendingPhoneNo() const;
    void setNotification(bool yn);
    [[nodiscard]] bool getNotification() const;
    [[nodiscard]] QString getMessageTitle() const;
    void setMessageTitle(const QString &messageTitle);
    [[nodiscard]] QString getMessageFooter() const;
    void setMessageFooter(const QString &messageFooter);
    void setOverwrite(bool yn);
    [[nodiscard]] bool getOverwrite() const;
    /// @param ms  the pause after each message, in milliseconds
    void setDelay(qint64 ms);
    [[nodiscard]] qint64 getDelay() const;
    void setTestOhoneNo(const QString &testPhoneNo);
    [[nodiscard]] QString getTestPhoneNo() const;
    /// Destroys the copies of a damaged settings file, see Defaults::eraseCopies().
    [[nodiscard]] QString eraseSettingsCopies();
    /// Sees the settings on disk, where they otherwise come soon. @return whether that worked
    [[nodiscard]] bool saveSettings();

    // Ordering

    /// Reorders tasks(). During a search those are the results, whose order ends with the search.
    void sort(const SortDescriptor &sortDescriptor) { m_list.sort(sortDescriptor); }

    // Tasks

    /// Adds a task at the end of the selected list; its times become the default times. A text key that is
    /// empty is replaced by a new one.
    /// @return the key
    QString addTask(const QString &key, const QDateTime &date, const QString &name, const QString &desc,
                    const Color &color, const QDateTime &due, qint64 status, qint64 priority,
                    const QString &statusName, const QString &priorityName, bool hidden, qint64 startHour,
                    qint64 startMin, qint64 endHour, qint64 endMin, const QString &client,
                    const QString &teamMember);
    /// The same for a task that is already put together.
    QString addTask(task t, ChangeKind kind = ChangeKind::Add);
    /// The same for a task that comes from a file or the cloud, without taskAdded().
    QString appendTask(task t, ChangeKind kind = ChangeKind::Add);
    /// Tells of a task of the full list as one that was added.
    void tellAdded(const QString &key) { Q_EMIT taskAdded(key); }

    /// Overwrites the selected task but for its key and hidden flag. The times become the default times even
    /// where nothing is selected.
    void editSelectedTask(const QDateTime &date, const QString &name, const QString &desc, const Color &color,
                          const QDateTime &due, qint64 status, qint64 priority, const QString &statusName,
                          const QString &priorityName, qint64 startHour, qint64 startMin, qint64 endHour,
                          qint64 endMin, const QString &client, const QString &teamMember);
    /// The same with the fields of a task.
    void editSelectedTask(const task &t);

    // Several tasks at once. After these setFilter() brings the rows back. Places are those in fullList(),
    // rising.

    /// The places of rows of tasksInView(); of rows that were set by setTasksInView() none.
    [[nodiscard]] TaskPlaces placesOfRows(const QList<int> &rows) const { return m_list.placesOfRows(rows); }
    void changeTasks(ChangeKind kind, const TaskPlaces &places, const std::function<void(task &)> &change);
    void removeTasks(const TaskPlaces &places);
    /// Puts tasks, one behind the other, before the task that stands at a place, or at the end.
    void moveTasks(const TaskPlaces &places, qsizetype before);

    // Steps that can be taken back; see TaskUndo

    /// From now on what is done to the full list is kept as steps, until they are taken.
    void setRecording(bool isOn) { m_list.setRecording(isOn); }
    [[nodiscard]] bool isRecording() const { return m_list.isRecording(); }
    void record(ChangeKind kind, const ListChange &change) { m_list.record(kind, change); }
    [[nodiscard]] QList<TaskStep> takeSteps() { return m_list.takeSteps(); }
    /// Takes a step back that was the last, or makes it again where it was taken back last.
    void replay(const TaskStep &step, bool back);

    /// Rebuilds tasksInView() for the view of that index.
    void setFilter(qint64 itemStatus);

    // The cloud copy, see CloudOperations. Without one they do nothing and return false.

    class CloudKitController;
    class CloudKitError;
    template<typename Success, typename Failure>
    class CloudKitResult;

    /// Sets the cloud copy. It may be null, and goes before the store does.
    void setCloud(CloudOperations *cloud) { m_cloud = cloud; }

    /// Asks for a new record of a task. @return the flag so far; the answers come later
    bool addTaskToCloud(const QString &key, const QDateTime &date, const QString &name, const QString &desc,
                        const Color &color, const QDateTime &due, qint64 status, qint64 priority,
                        const QString &statusName, const QString &priorityName, bool hidden, qint64 startHour,
                        qint64 startMin, qint64 endHour, qint64 endMin, const QString &client,
                        const QString &teamMember);
    /// Asks for every record with the key to be rewritten, or for a new one where there is none.
    /// @return the flag so far
    bool editTaskToCloud(const QString &key, const QDateTime &date, const QString &name, const QString &desc,
                         const Color &color, const QDateTime &due, qint64 status, qint64 priority,
                         const QString &statusName, const QString &priorityName, bool hidden,
                         qint64 startHour, qint64 startMin, qint64 endHour, qint64 endMin,
                         const QString &client, const QString &teamMember);
    /// Asks for every record with the key to be deleted. @return the flag so far
    bool deleteTaskToCloud(const QString &key);
    /// Sends a task again whose records deleteTaskToCloud() has deleted, and has nothing else sent.
    void restoreTaskToCloud(const task &t);
    /// Deletes every record of a task, and waits until that is done. @return whether it was
    bool deleteAllTasksToCloud();
    /// Sends every task of tasks() to the cloud, and waits until all are there. @return whether they are
    bool syncToCloudFromLocal();
    /// Merges every record of the cloud into the selected list, and waits until that is done: a task whose
    /// key has a record is overwritten, a record of an unknown key becomes a new task, nothing is deleted.
    /// @return whether it was done
    bool syncToLocalFromCloud();
    /// Saves a record zone "SharingZone". @param completionHandler  called on a thread of the service
    void createSharingZone(CloudOperations::ZoneHandler completionHandler);
    /// Traces who of the cloud's users has that phone number.
    void discoverUsersUsingApp(const QString &phone);

    // Colours

    /// The colour of a new task in this appearance: white, or black in the dark.
    [[nodiscard]] Color neutralColor() const;
    /// The colour of text in this appearance: black, or white in the dark.
    [[nodiscard]] Color textColor() const;
    /// Sets a form's colours to the neutral ones of the appearance.
    void changeColor(ColorWell &colorWell, TextView &descriptionColor) const;
    /// Inverts a form's colour and gives its description the text colour of the appearance.
    void invertColorWheeel(ColorWell &colorWell, TextView &descriptionColor) const;
    /// Inverts the colour of every task of the full list.
    void invertColors();

    // Selection

    /// Selects the task with that key, the last one where several have it.
    /// @return selected(): -1 when no task has the key
    qint64 setSelected(const QString &key);
    /// Moves the selected task one place up or down in tasks(), during a search among the results; selected()
    /// stays.
    /// @return whether it moved
    bool swapSelected(bool upper) { return m_list.moveSelected(upper); }
    /// Composes the share text of the selected task and, once the current event is handled, offers it beside
    /// the control that was pressed. @return whether a task was selected
    bool shareSelected(QObject *sender);
    /// The share text of the selected task; empty where nothing is selected.
    [[nodiscard]] QString shareTextOfSelected() const;
    /// Sets where texts are shared through; it must outlive the store.
    void setSharingPicker(SharingPicker *picker) { m_sharingPicker = picker; }
    /// Sets the selected task to status 1, "Closed". @return whether a task was selected
    bool closeSelected(QObject *sender);
    /// Sets the selected task to status 0, "Open". @return whether a task was selected
    bool reopenSelected();
    /// Adds a copy of the selected task with a new key. @return whether a task was selected
    bool cloneSelected(QObject *sender);
    [[nodiscard]] bool inDarkMode() const;
    [[nodiscard]] qint64 getSelectedTaskIndex() const { return m_list.selected(); }
    /// A copy of the selected task, or a blank record where nothing is selected.
    [[nodiscard]] task getSelectedTask() const;
    /// Removes the selected task; selected() stays.
    void removeSelected() { m_list.removeSelected(); }
    /// Empties tasks() and backupTasks(); tasksInView() follows with the next setFilter().
    void removeAll() { m_list.clear(); }
    void hideSelected() { setHiddenOfSelected(true); }
    void unhideSelected() { setHiddenOfSelected(false); }
    /// The selected task's hidden flag; false where nothing is selected.
    [[nodiscard]] bool getHiddenSelected() const;

    /// Whether an operation on the whole cloud copy waits for answers.
    [[nodiscard]] bool isWaitingForCloud() const { return m_cloud && m_cloud->isWaiting(); }

Q_SIGNALS:
    /// The user has added a task, or brought one back. The list may be told of as changed after this.
    void taskAdded(const QString &key);
    /// An operation on the whole cloud copy waits for answers, with the event loop running.
    void cloudWaitBegan();
    /// @param percent  how much of what has been asked for so far is answered
    void cloudProgressed(int percent);
    void cloudWaitEnded();
    /// An operation on the cloud copy has failed.
    /// @param cause  why, a sentence for the user; empty where only the records were missing
    void cloudFailed(const QString &cause);
    /// An operation on the cloud copy has done all that it was to do.
    void cloudSucceeded();

private:
    [[nodiscard]] QString text(const QString &key) const;
    void setHiddenOfSelected(bool hidden);

    TaskList m_list;
    DefaultTimes m_defaultTimes;
    QString m_lastMessage;
    QString m_searchTerm;
    Defaults &defaults;
    Appearance &m_appearance;
    SharingPicker *m_sharingPicker = nullptr;
    CloudOperations *m_cloud = nullptr;
};

/// The task store of the application, made on first use.
[[nodiscard]] TaskManager &tskMgr();

} // namespace oblino
