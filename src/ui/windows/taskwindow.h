#pragma once

#include <base/color.h>
#include <controls/toolwindow.h>
#include <core/task.h>

#include <QDateTime>

#include <memory>

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;

namespace oblino {

class NotificationCenter;
class ContactStore;
class TaskForm;
class TaskManager;
class UIUtil;
struct FetchRequest;

/// What the forms of tasks work on.
struct TaskWindowContext
{
    TaskManager &store;
    UIUtil &utilities;
    NotificationCenter &notifications;
    QString dataFolder; ///< where the contact store lies
};

/// What the add and the edit form have in common: a window around a TaskForm, the contact store from which
/// its names come, the refusal of a colour that would make the description unreadable, and the last dates and
/// colour that were accepted.
class TaskWindow : public ToolWindow
{
    Q_OBJECT

protected:
    /// @param mainTitle  of the default button
    TaskWindow(const TaskWindowContext &context, const QString &mainTitle, QSize leastSize, QWidget *parent);

public:
    ~TaskWindow() override;

    /// Whether the form may go away: it holds nothing that the user has entered, or the user gives it up.
    [[nodiscard]] bool mayClose();
    /// Closes the form without a question.
    void giveUp();

    bool becomeFirstResponder();
    void changeColor(QObject *sender);

protected:
    void viewDidAppear() override;
    void viewDidDisappear() override;

    /// Opens the contact store and fills the lists of names.
    void loadView();
    /// A colour was picked: accepts it unless it is that of the description's text.
    void acceptPickedColor();
    virtual void SelectDate() = 0;
    virtual void SelectDueDate() = 0;
    /// Whether a task may start and be due at these moments.
    [[nodiscard]] virtual bool isInOrder(const QDateTime &start, const QDateTime &due) const = 0;
    /// The start is later than the due date: offers to move that too, else puts the start back.
    void refuseDate();
    /// The due date is earlier than the start: puts it back, or offers to move it where nobody has chosen it.
    void refuseDueDate();
    /// Reads what was typed and sees to the order of the dates. @return whether the form may be confirmed
    [[nodiscard]] bool mayConfirm();
    /// What the form shows now is not of the user's entering.
    void beginAfresh();
    [[nodiscard]] bool isChanged() const;
    /// The dates in the form are those that it began with.
    void clearChosenDates();
    [[nodiscard]] bool windowShouldClose() override { return mayClose(); }
    void focusInEvent(QFocusEvent *event) override;

    TaskManager &m_store;
    UIUtil &m_utilities;
    NotificationCenter &m_notifications;
    TaskForm *m_form;
    QVBoxLayout *m_layout;
    QDialogButtonBox *m_buttons;
    QPushButton *m_mainButton;
    Color colorWell; // the last accepted colour
    QDateTime previousDate;
    QDateTime previousDueDate;

private:
    void watchDates();
    void askForNumber(const FetchRequest &directory, const QString &name);
    void addContact(const FetchRequest &directory, const QString &name, const QString &number);
    void showContacts();
    void moveDueDate();
    [[nodiscard]] bool asksToMoveDueDate(const QString &text);

    task m_shown;                 // at the beginning
    bool m_dateWasChosen = false; // in this form
    bool m_dueDateWasChosen = false;
    bool m_choseDateLast = false; // rather than the due date
    QString m_dataFolder;
    std::unique_ptr<ContactStore> persistentContainer;
    ContactStore *managedObjectContext = nullptr; // the container's main one; none without a store
};

} // namespace oblino
