#pragma once

#include <controls/keptvalue.h>

#include <core/task.h>

#include <QTime>
#include <QWidget>

#include <memory>
#include <utility>

class QComboBox;
class QLineEdit;

namespace oblino {

namespace Ui {
class TaskForm;
}

class ColorButton;
class DateField;
class DescriptionView;
class NameBox;
class TimeField;
class TypedField;
class UIUtil;

/// The eleven controls in which a task is entered, shared by the add and the edit form. What the user leaves
/// alone comes back exactly as it was set, also where a control cannot show all of it: an hour past 23, a
/// status outside the list, a date outside the field's range or with a time of day, a description with odd
/// line ends.
class TaskForm : public QWidget
{
    Q_OBJECT

public:
    explicit TaskForm(UIUtil &utilities, QWidget *parent = nullptr);
    ~TaskForm() override;

    void setContacts(const QStringList &clients, const QStringList &teamMembers);

    void setName(const QString &name);
    void setDescription(const QString &desc);
    void setDate(const QDateTime &date);
    void setDueDate(const QDateTime &due);
    void setStatus(qint64 status, const QString &statusName);
    void setPriority(qint64 priority, const QString &priorityName);
    void setTimes(qint64 startHour, qint64 startMin, qint64 endHour, qint64 endMin);
    void setPeople(const QString &clientName, const QString &teamMemberName);

    [[nodiscard]] QDateTime date() const;
    [[nodiscard]] QDateTime dueDate() const;

    /// Reads what stands in the fields for dates and times. Where one cannot be read, it gets the focus.
    /// @return whether all could
    [[nodiscard]] bool judge();

    /// Whether something was typed into a field for dates or times that has not been read yet.
    [[nodiscard]] bool isBeingTyped() const;

    /// What the form holds; key and hidden flag have no meaning.
    [[nodiscard]] task entered() const;

    // Controls

    QLineEdit *txtTaskName;
    DateField *dtTaskDate;
    DescriptionView *txtTaskDescription;
    ColorButton *color;
    DateField *dtTaskDueDate;
    QComboBox *inTaskStatus;
    QComboBox *inTaskPriority;
    TimeField *startTime;
    TimeField *endTime;
    NameBox *teamMember;
    NameBox *client;

Q_SIGNALS:
    /// The client in the form is to be entered in the directory.
    void clientToAdd(const QString &name);
    void teamMemberToAdd(const QString &name);

private:
    using HourAndMinute = std::pair<qint64, qint64>;

    void fillLists();
    void prepareFields();
    void showTimesNotice();
    void showUnknownNames();
    void setTime(TimeField &picker, KeptValue<HourAndMinute, QTime> &kept, qint64 hour, qint64 minute);

    std::unique_ptr<Ui::TaskForm> m_ui;
    UIUtil &m_utilities;
    KeptValue<QString> m_name;
    KeptValue<QString> m_desc;
    KeptValue<QDateTime, QDate> m_date;
    KeptValue<QDateTime, QDate> m_due;
    KeptValue<HourAndMinute, QTime> m_start;
    KeptValue<HourAndMinute, QTime> m_end;
    KeptValue<QString> m_client;
    KeptValue<QString> m_teamMember;
};

} // namespace oblino
