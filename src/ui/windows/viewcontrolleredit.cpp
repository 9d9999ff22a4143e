#include <ui/windows/viewcontrolleredit.h>

#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <controls/icons.h>
#include <ui/uiutil.h>
#include <ui/windows/taskform.h>

#include <base/notificationcenter.h>
#include <base/trace.h>
#include <core/taskmanager.h>

#include <QClipboard>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace oblino {

ViewControllerEdit::ViewControllerEdit(const TaskWindowContext &context, QWidget *parent)
    : TaskWindow(context, tr("Sa&ve"), {565, 613}, parent)
    , keyLabel(new QLineEdit(this))
    , copyKey(new QPushButton(themedIcon(QStringLiteral("copy")), tr("Cop&y"), this))
    , m_shareButton(m_buttons->addButton(tr("S&hare…"), QDialogButtonBox::ResetRole))
{
    setWindowTitle(tr("Edit Task"));
    m_mainButton->setObjectName(QStringLiteral("saveButton"));
    m_shareButton->setObjectName(QStringLiteral("shareTaskButton"));
    keyLabel->setObjectName(QStringLiteral("keyLabel"));
    keyLabel->setReadOnly(true);
    keyLabel->setAccessibleName(tr("Key"));
    copyKey->setObjectName(QStringLiteral("copyKey"));
    QPushButton *reset = m_buttons->addButton(tr("&Reset"), QDialogButtonBox::ResetRole);
    reset->setObjectName(QStringLiteral("resetButton"));
    for (QPushButton *button : {m_shareButton, copyKey, reset})
        button->setAutoDefault(false);

    auto *keyRow = new QHBoxLayout;
    keyRow->setSpacing(8);
    keyRow->addWidget(keyLabel, 1);
    keyRow->addWidget(copyKey);
    qobject_cast<QFormLayout *>(m_form->layout())->addRow(tr("Key"), keyRow);

    connect(m_mainButton, &QPushButton::clicked, this, [this] { btnEditTask_Click(m_mainButton); });
    connect(m_shareButton, &QPushButton::pressed, this, [this] { shareTask(m_shareButton); });
    connect(reset, &QPushButton::clicked, this, &ViewControllerEdit::ResetToOriginal);
    connect(copyKey, &QPushButton::clicked, this, &ViewControllerEdit::CopyKeyLabel);
    connect(m_form->color, &ColorButton::picked, this, &ViewControllerEdit::SelectColorWell);

    const task selected = m_store.getSelectedTask();
    colorWell = selected.color;
    previousDate = selected.date;
    previousDueDate = selected.due;
    viewDidLoad();
}

void ViewControllerEdit::viewDidLoad()
{
    trace("Edit");
    const task selected = m_store.getSelectedTask();
    showFields(selected);
    keyLabel->setText(selected.key);
    keyLabel->setCursorPosition(0);
    m_form->setTimes(selected.startHour, selected.startMin, selected.endHour, selected.endMin);
    trace("client:", selected.client);
    m_form->setPeople(selected.client, selected.teamMember);
    beginAfresh();
    setMinimumSize(100, 150);
}

// The fields that a reset puts back as well.
void ViewControllerEdit::showFields(const task &t)
{
    m_form->setDate(t.date);
    m_form->setName(t.name);
    m_form->setDescription(t.desc);
    m_form->color->setColor(t.color);
    m_form->setDueDate(t.due);
    m_form->setStatus(t.status, t.statusName);
    m_form->setPriority(t.priority, t.priorityName);
}

void ViewControllerEdit::viewDidAppear()
{
    m_form->txtTaskDescription->setTextColor(m_store.textColor());
    if (!std::exchange(m_observesAppearance, true)) {
        m_notifications.observe(QStringLiteral("AppleInterfaceThemeChangedNotification"), this,
                                [this] { interfaceModeChanged(); });
    }
    TaskWindow::viewDidAppear();
}

void ViewControllerEdit::traceDates() const
{
    trace("Start Date:", m_form->date());
    trace("Due Date:", m_form->dueDate());
}

bool ViewControllerEdit::isInOrder(const QDateTime &start, const QDateTime &due) const
{
    return start <= due;
}

void ViewControllerEdit::SelectDate()
{
    traceDates();
    if (!isInOrder(m_form->date(), m_form->dueDate()))
        refuseDate();
    previousDate = m_form->date();
}

void ViewControllerEdit::SelectDueDate()
{
    traceDates();
    if (!isInOrder(m_form->date(), m_form->dueDate()))
        refuseDueDate();
    previousDueDate = m_form->dueDate();
}

void ViewControllerEdit::SelectColorWell()
{
    acceptPickedColor();
}

void ViewControllerEdit::interfaceModeChanged()
{
    trace("Dark mode change");
    const bool wasChanged = isChanged();
    m_store.invertColorWheeel(*m_form->color, *m_form->txtTaskDescription);
    colorWell = colorWell.inverted();
    if (!wasChanged)
        beginAfresh();
}

void ViewControllerEdit::ResetToOriginal()
{
    trace("Reset");
    clearChosenDates();
    if (selectOwnTask())
        showFields(m_store.getSelectedTask());
}

void ViewControllerEdit::CopyKeyLabel()
{
    QGuiApplication::clipboard()->setText(keyLabel->text());
}

bool ViewControllerEdit::selectOwnTask()
{
    if (m_store.setSelected(keyLabel->text()) >= 0)
        return true;
    m_utilities.dialogOK(tr("This task has been deleted meanwhile. Nothing was changed."));
    return false;
}

bool ViewControllerEdit::save()
{
    if (!mayConfirm() || !selectOwnTask())
        return false;
    m_store.editSelectedTask(m_form->entered());
    beginAfresh();
    return true;
}

void ViewControllerEdit::btnEditTask_Click(QObject *)
{
    trace("Button Pressed");
    if (!save())
        return;
    close();
    m_notifications.post(QStringLiteral("reload"));
}

void ViewControllerEdit::shareTask(QObject *sender)
{
    if (!save())
        return;
    m_notifications.post(QStringLiteral("reload"));
    m_store.shareSelected(sender);
}

} // namespace oblino
