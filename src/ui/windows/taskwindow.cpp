#include <ui/windows/taskwindow.h>

#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <ui/uiutil.h>
#include <ui/windows/taskform.h>

#include <base/trace.h>
#include <contacts/contactstore.h>
#include <core/taskmanager.h>

#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace oblino {

TaskWindow::TaskWindow(const TaskWindowContext &context, const QString &mainTitle, QSize leastSize,
                       QWidget *parent)
    : ToolWindow(parent, leastSize)
    , m_store(context.store)
    , m_utilities(context.utilities)
    , m_notifications(context.notifications)
    , m_form(new TaskForm(context.utilities, this))
    , m_layout(new QVBoxLayout(this))
    , m_buttons(new QDialogButtonBox(this))
    , m_mainButton(m_buttons->addButton(mainTitle, QDialogButtonBox::AcceptRole))
    , m_dataFolder(context.dataFolder)
{
    m_layout->setContentsMargins(16, 16, 16, 16);
    m_layout->setSpacing(16);
    m_layout->addWidget(m_form, 1);
    m_layout->addWidget(m_buttons);
    m_mainButton->setDefault(true);
    connect(m_buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole), &QPushButton::clicked, this,
            &QDialog::reject);
    m_form->txtTaskName->setFocus();
    connect(m_form->color, &ColorButton::panelColorChanged, this, [this] { changeColor(m_form->color); });
    watchDates();
    loadView();
}

TaskWindow::~TaskWindow() = default;

// The colour panel is still open; acceptPickedColor() is called when a colour is chosen.
void TaskWindow::changeColor(QObject * /*sender*/)
{
    trace("Change color");
}

void TaskWindow::loadView()
{
    persistentContainer = std::make_unique<ContactStore>(m_dataFolder);
    const StoreLoading loading = persistentContainer->loadPersistentStores();
    if (loading.error.isEmpty()) {
        trace("---Persistent Store---:", loading.location, loading.type);
    } else {
        trace("Unable to Add Persistent Store");
        trace(QStringLiteral("%1, %2").arg(loading.error, loading.reason));
    }
    managedObjectContext = persistentContainer->viewContext();
    trace("Mngd Context:", managedObjectContext ? "Model" : "none");
    showContacts();
    connect(m_form, &TaskForm::clientToAdd, this,
            [this](const QString &name) { askForNumber(Clients::fetchRequest(), name); });
    connect(m_form, &TaskForm::teamMemberToAdd, this,
            [this](const QString &name) { askForNumber(TeamMembers::fetchRequest(), name); });
}

void TaskWindow::showContacts()
{
    m_form->setContacts(persistentContainer->names(Clients::fetchRequest()),
                        persistentContainer->names(TeamMembers::fetchRequest()));
}

void TaskWindow::askForNumber(const FetchRequest &directory, const QString &name)
{
    auto *box = new QInputDialog(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("phoneNumber"));
    box->setWindowTitle(tr("Add %1").arg(name));
    box->setLabelText(tr("Phone number"));
    connect(box, &QInputDialog::textValueSelected, this,
            [this, directory, name](const QString &number) { addContact(directory, name, number); });
    box->open();
}

void TaskWindow::addContact(const FetchRequest &directory, const QString &name, const QString &number)
{
    QString error = tr("The directory could not be opened.");
    if (managedObjectContext) {
        ContactModel &contacts = *managedObjectContext->objects(directory);
        const int row = contacts.rowCount();
        contacts.insertRow(row);
        contacts.setData(contacts.index(row, NameColumn), name);
        contacts.setData(contacts.index(row, PhoneNoColumn), number);
        error = managedObjectContext->save();
    }
    if (!error.isEmpty()) {
        m_utilities.dialogOK(tr("“%1” could not be added: %2").arg(name, error));
        if (managedObjectContext)
            (void)managedObjectContext->load(); // without what could not be saved
    }
    showContacts();
}

bool TaskWindow::becomeFirstResponder()
{
    m_form->txtTaskDescription->setFocus();
    trace(m_form->txtTaskDescription->hasFocus());
    return true;
}

void TaskWindow::viewDidAppear()
{
    resize(sizeHint().expandedTo({565, 613}).boundedTo(screen()->availableSize()));
    update();
}

void TaskWindow::viewDidDisappear()
{
    m_form->color->deactivate();
}

void TaskWindow::acceptPickedColor()
{
    const Color picked = m_form->color->color();
    trace("Select color well", picked.red(), picked.green(), picked.blue(), picked.alpha());
    m_form->color->deactivate();
    if (picked == m_form->txtTaskDescription->textColor()) {
        m_form->color->setColor(colorWell);
        return;
    }
    colorWell = picked;
    m_form->txtTaskDescription->setTextColor(m_store.textColor());
}

void TaskWindow::watchDates()
{
    connect(m_form->dtTaskDate, &DateField::dateChosen, this,
            [this] { m_dateWasChosen = m_choseDateLast = true; });
    connect(m_form->dtTaskDueDate, &DateField::dateChosen, this, [this] {
        m_dueDateWasChosen = true;
        m_choseDateLast = false;
    });
    // On the way from the one date to the other their order says nothing yet. The question comes later,
    // because in the middle of a change of focus it would swallow the click that made it.
    const auto check = [this](const DateField *field, void (TaskWindow::*select)()) {
        const bool isForAButton =
            focusWidget() && m_buttons->isAncestorOf(focusWidget()); // checks, or cancels
        if (isVisible() && !isForAButton && !field->isMarked())
            (this->*select)();
    };
    connect(m_form->dtTaskDate, &DateField::left, this, [this, check] {
        if (m_dueDateWasChosen)
            QTimer::singleShot(0, this,
                               [this, check] { check(m_form->dtTaskDate, &TaskWindow::SelectDate); });
    });
    connect(m_form->dtTaskDueDate, &DateField::left, this, [this, check] {
        if (m_dateWasChosen)
            QTimer::singleShot(0, this,
                               [this, check] { check(m_form->dtTaskDueDate, &TaskWindow::SelectDueDate); });
    });
}

bool TaskWindow::asksToMoveDueDate(const QString &text)
{
    return m_utilities.ask({{}, text, {QStringLiteral("OK"), tr("Move the due date too")}, 0}) == 1;
}

void TaskWindow::refuseDate()
{
    if (asksToMoveDueDate(QStringLiteral("Select a Start Date prior to Due Date"))) {
        moveDueDate();
        return;
    }
    m_form->setDate(previousDate);
    m_form->dtTaskDate->edit();
}

// By as many days as the start; at least to it.
void TaskWindow::moveDueDate()
{
    const QDateTime moved = previousDueDate.addDays(previousDate.daysTo(m_form->date()));
    m_form->setDueDate(isInOrder(m_form->date(), moved) ? moved : m_form->date());
    previousDueDate = m_form->dueDate();
}

void TaskWindow::refuseDueDate()
{
    const QString text = QStringLiteral("Select a Due Date after Start Date");
    if (!m_dueDateWasChosen && asksToMoveDueDate(text)) {
        moveDueDate();
        return;
    }
    if (m_dueDateWasChosen)
        m_utilities.dialogOK(text);
    m_form->setDueDate(previousDueDate);
    m_form->dtTaskDueDate->edit();
}

// A date that is put back is not what the user meant, so that nothing is confirmed with it.
bool TaskWindow::mayConfirm()
{
    if (!m_form->judge())
        return false;
    const bool wasChosen = m_dateWasChosen || m_dueDateWasChosen;
    if (!wasChosen || isInOrder(m_form->date(), m_form->dueDate()))
        return true;
    if (!m_choseDateLast) {
        SelectDueDate();
        return false;
    }
    const QDateTime date = m_form->date();
    SelectDate();
    return m_form->date() == date;
}

void TaskWindow::clearChosenDates()
{
    m_dateWasChosen = m_dueDateWasChosen = false;
}

void TaskWindow::beginAfresh()
{
    clearChosenDates();
    m_shown = m_form->entered();
}

bool TaskWindow::isChanged() const
{
    return m_form->isBeingTyped() || m_form->entered() != m_shown;
}

bool TaskWindow::mayClose()
{
    return !isVisible() || !isChanged() ||
           m_utilities.ask({tr("Discard what you have entered?"),
                            tr("The task has not been saved."),
                            {tr("Discard"), tr("Keep Editing")},
                            1}) == 0;
}

void TaskWindow::giveUp()
{
    done(QDialog::Rejected);
}

void TaskWindow::focusInEvent(QFocusEvent *event)
{
    ToolWindow::focusInEvent(event);
    becomeFirstResponder();
}

} // namespace oblino
