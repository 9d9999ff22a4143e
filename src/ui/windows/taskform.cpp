#include <ui/windows/taskform.h>

#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/timefield.h>
#include <ui/uiutil.h>
#include <ui/windows/unknownname.h>
#include <ui_taskform.h>

#include <base/clock.h>
#include <base/fieldtext.h>
#include <controls/namebox.h>
#include <controls/refusingvalidator.h>
#include <core/filedays.h>

#include <QLineEdit>

namespace oblino {

namespace {

// Selects the item of that number; a number outside the list becomes one more item.
void select(QComboBox *box, qint64 number, const QString &name)
{
    int index = box->findData(number);
    if (index < 0) {
        box->addItem(name, number);
        index = box->count() - 1;
    }
    box->setCurrentIndex(index);
}

} // namespace

TaskForm::TaskForm(UIUtil &utilities, QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::TaskForm>())
    , m_utilities(utilities)
{
    m_ui->setupUi(this);
    txtTaskName = m_ui->txtTaskName;
    dtTaskDate = m_ui->dtTaskDate;
    txtTaskDescription = m_ui->txtTaskDescription;
    color = m_ui->color;
    dtTaskDueDate = m_ui->dtTaskDueDate;
    inTaskStatus = m_ui->inTaskStatus;
    inTaskPriority = m_ui->inTaskPriority;
    startTime = m_ui->startTime;
    endTime = m_ui->endTime;
    teamMember = m_ui->teamMember;
    client = m_ui->client;
    fillLists();
    prepareFields();
}

TaskForm::~TaskForm() = default;

void TaskForm::fillLists()
{
    const auto fill = [](QComboBox *box, const QStringList &names) {
        for (const QString &name : names)
            box->addItem(name, box->count());
    };
    fill(inTaskStatus, {QStringLiteral("Open"), QStringLiteral("Closed")});
    fill(inTaskPriority, {QStringLiteral("Low"), QStringLiteral("Medium"), QStringLiteral("High")});
}

void TaskForm::prepareFields()
{
    const FileDays days = fileDays(today());
    for (DateField *field : {dtTaskDate, dtTaskDueDate}) {
        field->setDayRange(days.first, days.last);
        connect(field, &DateField::dateChosen, this, &TaskForm::showTimesNotice);
    }
    for (TimeField *field : {startTime, endTime})
        connect(field, &TimeField::timeChosen, this, &TaskForm::showTimesNotice);
    for (NameBox *box : {client, teamMember}) {
        new RefusingValidator(isFieldText, fieldTextError(), box->lineEdit());
        connect(box, &NameBox::nameEntered, this, &TaskForm::showUnknownNames);
    }
    connect(m_ui->unknownClient, &UnknownName::addRequested, this,
            [this] { Q_EMIT clientToAdd(client->currentText().trimmed()); });
    connect(m_ui->unknownTeamMember, &UnknownName::addRequested, this,
            [this] { Q_EMIT teamMemberToAdd(teamMember->currentText().trimmed()); });
    new RefusingValidator(isFieldText, fieldTextError(), txtTaskName);
}

void TaskForm::showTimesNotice()
{
    const bool isBackwards =
        dtTaskDate->date() == dtTaskDueDate->date() && endTime->time() < startTime->time();
    m_ui->timesNotice->setNotice(isBackwards ? tr("The end time is before the start time.") : QString());
}

void TaskForm::showUnknownNames()
{
    const QString nobody = task().client;
    const auto show = [&](UnknownName *line, const NameBox *box, const QString &sentence) {
        line->setNotice(box->isKnown() || box->currentText() == nobody ? QString() : sentence);
    };
    show(m_ui->unknownClient, client, tr("not among your clients: gets no texts"));
    show(m_ui->unknownTeamMember, teamMember, tr("not among your team members: gets no texts"));
}

void TaskForm::setContacts(const QStringList &clients, const QStringList &teamMembers)
{
    client->setNames(clients);
    teamMember->setNames(teamMembers);
    showUnknownNames();
}

void TaskForm::setName(const QString &name)
{
    txtTaskName->setText(name);
    m_name.set(name, txtTaskName->text());
}

void TaskForm::setDescription(const QString &desc)
{
    txtTaskDescription->setText(desc);
    m_desc.set(desc, txtTaskDescription->text());
}

void TaskForm::setDate(const QDateTime &date)
{
    dtTaskDate->setDate(date.date());
    m_date.set(date, date.date());
    showTimesNotice();
}

void TaskForm::setDueDate(const QDateTime &due)
{
    dtTaskDueDate->setDate(due.date());
    m_due.set(due, due.date());
    showTimesNotice();
}

void TaskForm::setStatus(qint64 status, const QString &statusName)
{
    select(inTaskStatus, status, statusName);
}

void TaskForm::setPriority(qint64 priority, const QString &priorityName)
{
    select(inTaskPriority, priority, priorityName);
}

void TaskForm::setTimes(qint64 startHour, qint64 startMin, qint64 endHour, qint64 endMin)
{
    setTime(*startTime, m_start, startHour, startMin);
    setTime(*endTime, m_end, endHour, endMin);
    showTimesNotice();
}

void TaskForm::setTime(TimeField &picker, KeptValue<HourAndMinute, QTime> &kept, qint64 hour, qint64 minute)
{
    m_utilities.setTimeDatePicker(picker, hour, minute);
    kept.set({hour, minute}, picker.time());
}

void TaskForm::setPeople(const QString &clientName, const QString &teamMemberName)
{
    client->setName(clientName);
    m_client.set(clientName, client->currentText());
    teamMember->setName(teamMemberName);
    m_teamMember.set(teamMemberName, teamMember->currentText());
    showUnknownNames();
}

QDateTime TaskForm::date() const
{
    return m_date.value(dtTaskDate->date(), dtTaskDate->date().startOfDay());
}

QDateTime TaskForm::dueDate() const
{
    return m_due.value(dtTaskDueDate->date(), dtTaskDueDate->date().startOfDay());
}

bool TaskForm::judge()
{
    for (TypedField *field :
         std::initializer_list<TypedField *>{dtTaskDate, dtTaskDueDate, startTime, endTime}) {
        if (!field->judge()) {
            field->edit();
            return false;
        }
    }
    return true;
}

bool TaskForm::isBeingTyped() const
{
    return !dtTaskDate->isUntouched() || !dtTaskDueDate->isUntouched() || !startTime->isUntouched() ||
           !endTime->isUntouched();
}

task TaskForm::entered() const
{
    const auto text = [](const KeptValue<QString> &kept, const QString &shown) {
        return kept.value(shown, shown);
    };
    const auto time = [this](const KeptValue<HourAndMinute, QTime> &kept, const TimeField &picker) {
        return kept.value(picker.time(), {m_utilities.getHourFromDatePicker(picker),
                                          m_utilities.getMinuteFromDatePicker(picker)});
    };
    const qint64 status = inTaskStatus->currentData().toLongLong();
    const qint64 priority = inTaskPriority->currentData().toLongLong();
    const auto [startHour, startMin] = time(m_start, *startTime);
    const auto [endHour, endMin] = time(m_end, *endTime);
    return task{.key = {},
                .date = date(),
                .name = text(m_name, txtTaskName->text()),
                .desc = text(m_desc, txtTaskDescription->text()),
                .client = text(m_client, client->currentText()),
                .teamMember = text(m_teamMember, teamMember->currentText()),
                .color = color->color(),
                .due = dueDate(),
                .status = status,
                .priority = priority,
                .statusName = inTaskStatus->currentText(),
                .priorityName = inTaskPriority->currentText(),
                .hidden = false,
                .startHour = startHour,
                .startMin = startMin,
                .endHour = endHour,
                .endMin = endMin};
}

} // namespace oblino
