#include <ui/windows/viewcontrolleradd.h>

#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <controls/timefield.h>
#include <ui/uiutil.h>
#include <ui/windows/taskform.h>

#include <base/clock.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <core/taskmanager.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace oblino {

ViewControllerAdd::ViewControllerAdd(const TaskWindowContext &context, QWidget *parent)
    : TaskWindow(context, tr("A&dd"), {565, 452}, parent)
{
    setWindowTitle(tr("New Task"));
    m_mainButton->setObjectName(QStringLiteral("addButton"));
    QPushButton *reset = m_buttons->addButton(tr("&Reset"), QDialogButtonBox::ResetRole);
    reset->setObjectName(QStringLiteral("resetButton"));
    reset->setAutoDefault(false);
    connect(m_mainButton, &QPushButton::clicked, this, &ViewControllerAdd::btnAddTask_Click);
    connect(reset, &QPushButton::clicked, this, &ViewControllerAdd::ResetToOriginal);
    connect(m_form->color, &ColorButton::picked, this, &ViewControllerAdd::selectColorWell);
    previousDate = previousDueDate = now();
    viewDidLoad();
}

void ViewControllerAdd::viewDidLoad()
{
    chooseNow();
    m_form->inTaskStatus->setCurrentIndex(0);
    m_form->inTaskPriority->setCurrentIndex(0);
    m_form->setDescription({});
    m_notifications.observe(QStringLiteral("AppleInterfaceThemeChangedNotification"), this,
                            [this] { interfaceModeChanged(); });
    setMinimumSize(100, 150);
    m_store.changeColor(*m_form->color, *m_form->txtTaskDescription);
    m_form->setTimes(m_store.defaultStartHour(), m_store.defaultStartMin(), m_store.defaultEndHour(),
                     m_store.defaultEndMin());
    beginAfresh();
    m_notifications.observe(QStringLiteral("dayChanged"), this, [this] { dayChanged(); });
}

void ViewControllerAdd::dayChanged()
{
    if (isChanged())
        return;
    chooseNow();
    previousDate = previousDueDate = now();
    beginAfresh();
}

void ViewControllerAdd::viewWillAppear()
{
    colorWell = m_store.neutralColor();
    const auto traceTime = [this](const TimeField &picker) {
        trace(m_utilities.getHourFromDatePicker(picker), ":", m_utilities.getMinuteFromDatePicker(picker));
    };
    traceTime(*m_form->startTime);
    traceTime(*m_form->endTime);
}

void ViewControllerAdd::chooseNow()
{
    const QDateTime moment = now();
    m_form->setDueDate(moment);
    m_form->setDate(moment);
}

bool ViewControllerAdd::isInOrder(const QDateTime &start, const QDateTime &due) const
{
    return start.date() <= due.date();
}

void ViewControllerAdd::SelectDate()
{
    if (m_utilities.compareDate<int>(m_form->date(), m_form->dueDate()) == -1)
        refuseDate();
    previousDate = m_form->date();
}

void ViewControllerAdd::SelectDueDate()
{
    trace("Start Date:", m_form->date());
    trace("Due Date:", m_form->dueDate());
    if (m_utilities.compareDate<int>(m_form->dueDate(), m_form->date()) == 1)
        refuseDueDate();
    previousDueDate = m_form->dueDate();
}

void ViewControllerAdd::selectColorWell()
{
    acceptPickedColor();
}

void ViewControllerAdd::interfaceModeChanged()
{
    trace("Dark mode change");
    const bool wasChanged = isChanged();
    m_store.changeColor(*m_form->color, *m_form->txtTaskDescription);
    colorWell = m_form->color->color();
    if (!wasChanged)
        beginAfresh();
}

void ViewControllerAdd::ResetToOriginal()
{
    trace("Reset");
    chooseNow();
    m_form->setName({});
    m_form->inTaskStatus->setCurrentIndex(0);
    m_form->inTaskPriority->setCurrentIndex(0);
    m_form->setDescription({});
    m_store.changeColor(*m_form->color, *m_form->txtTaskDescription);
    beginAfresh();
}

void ViewControllerAdd::btnAddTask_Click()
{
    trace("Button Pressed");
    if (!mayConfirm())
        return;
    task t = m_form->entered();
    t.key.clear(); // the store makes one
    m_store.addTask(std::move(t));
    m_form->setName({});
    m_form->setDescription({});
    m_form->color->deactivate();
    m_notifications.post(QStringLiteral("reload"));
    beginAfresh();
    close();
}

} // namespace oblino
