#include <messaging/windows/viewcontrollersending.h>

#include <base/clock.h>
#include <base/datakind.h>
#include <base/trace.h>
#include <contacts/windows/contactlist.h>
#include <contacts/windows/contacttable.h>
#include <controls/datefield.h>
#include <core/days.h>
#include <core/filedays.h>
#include <core/taskmanager.h>
#include <messaging/sendingsettings.h>
#include <messaging/smsmessage.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollersending.h>

#include <QLocale>
#include <QPushButton>
#include <QThread>

#include <algorithm>
#include <limits>

namespace oblino {

namespace {

constexpr int daysShown = 6; // from the first day of the range to the last

const QString account = QStringLiteral(
    " data vill be sent using your Twilio Account info configured in Settings. Make sure your Twilio "
    "information is configured properly in Settings and you tested it by Sending a Test message from the "
    "Settings window. Please refer to your Twilio license for privacy info.");

} // namespace

ViewControllerSending::ViewControllerSending(TaskManager &store, UIUtil &utilities, SendingRun &run,
                                             const QString &contacts, QWidget *parent)
    : ToolWindow(parent, {469, 763})
    , m_store(store)
    , m_utilities(utilities)
    , m_run(run)
    , m_contacts(contacts)
    , m_ui(std::make_unique<Ui::ViewControllerSending>())
    , clientsArray(new ContactList(this))
    , teamMembersArray(new ContactList(this))
{
    m_ui->setupUi(this);
    const FileDays days = fileDays(today());
    for (DateField *field : {m_ui->startSendDate, m_ui->endSendDate})
        field->setDayRange(days.first, days.last);
    m_ui->startSendDate->setDate(today());
    m_ui->endSendDate->setDate(today().addDays(daysShown));
    viewDidLoad();
    connectControls();
}

ViewControllerSending::~ViewControllerSending()
{
    hide(); // which saves
}

void ViewControllerSending::connectControls()
{
    connect(m_ui->allClients, &QCheckBox::clicked, this, [this] { selectClients(m_ui->allClients); });
    connect(m_ui->allTeamMembers, &QCheckBox::clicked, this,
            [this] { selectTeamMembers(m_ui->allTeamMembers); });
    connect(m_ui->sendMsgClients, &QPushButton::clicked, this,
            [this] { SendScheduleToClients(m_ui->sendMsgClients); });
    connect(m_ui->sendMsgTeamMembers, &QPushButton::clicked, this,
            [this] { SendScheduleToTeamMembers(m_ui->sendMsgTeamMembers); });
    connect(m_ui->sendSMSClientsTeamMembers, &QPushButton::clicked, this,
            [this] { sendSingleSMSToClientTeamMember(m_ui->sendSMSClientsTeamMembers); });
    connect(m_ui->closeButton, &QPushButton::clicked, this, [this] { closeSending(m_ui->closeButton); });
    connect(m_ui->smsText, &QLineEdit::textChanged, this, &ViewControllerSending::showLength);
    for (ContactTable *table : {m_ui->clientsTable, m_ui->teamMembers})
        connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                &ViewControllerSending::showSelection);
    connect(&m_run, &SendingRun::progressed, this, &ViewControllerSending::showProgress);
    connect(&m_run, &SendingRun::finished, this, &ViewControllerSending::showEnd);
    showLength();
    showSelection();
}

void ViewControllerSending::viewDidLoad()
{
    persistentContainer = std::make_unique<ContactStore>(m_contacts);
    const StoreLoading loading = persistentContainer->loadTraced();
    managedObjectContext = persistentContainer->viewContext();
    const auto message = [&loading](const QString &nobody, const QString &unopened) {
        return loading.error.isEmpty() ? nobody : unopened + QLatin1String("\n\n") + loading.error;
    };
    prepare(m_ui->clientsTable, clientsArray, Clients::fetchRequest(),
            message(tr("No clients yet.\nEnter them in Tools ▸ Clients."),
                    tr("The clients could not be opened, so none are shown here.")));
    prepare(m_ui->teamMembers, teamMembersArray, TeamMembers::fetchRequest(),
            message(tr("No team members yet.\nEnter them in Tools ▸ Team Members."),
                    tr("The team members could not be opened, so none are shown here.")));
}

void ViewControllerSending::reload()
{
    if (!managedObjectContext)
        return;
    if (const QString error = managedObjectContext->load(); !error.isEmpty())
        trace("Unable to Read Contacts", error);
}

void ViewControllerSending::prepare(ContactTable *table, ContactList *list, const FetchRequest &request,
                                    const QString &emptyMessage)
{
    if (managedObjectContext)
        list->setSourceModel(managedObjectContext->objects(request));
    table->setModel(list);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setContextMenuPolicy(Qt::NoContextMenu); // it would select a row, and there is none here
    table->setSelectionMode(QAbstractItemView::MultiSelection);
    table->setEmptyMessage(emptyMessage);
}

void ViewControllerSending::viewDidAppear()
{
    const QStringList missing = missingSettings(m_store);
    setSendingEnabled(missing.isEmpty() && !m_run.isRunning(), !m_run.isRunning());
    const QString why =
        missing.isEmpty()
            ? QString()
            : tr("Tools ▸ Messaging Settings still needs %1.").arg(missing.join(QLatin1String(", ")));
    for (QPushButton *button : {m_ui->sendMsgClients, m_ui->sendMsgTeamMembers})
        button->setToolTip(why);
    if (m_run.isRunning()) {
        showRange(m_run.job());
        showProgress();
    } else if (!why.isEmpty()) {
        m_ui->sendingInfo->setText(why);
    }
}

void ViewControllerSending::viewWillDisappear()
{
    if (managedObjectContext)
        (void)managedObjectContext->save();
}

void ViewControllerSending::selectClients(QObject * /*sender*/)
{
    m_ui->allClients->isChecked() ? m_ui->clientsTable->selectAll() : m_ui->clientsTable->clearSelection();
}

void ViewControllerSending::selectTeamMembers(QObject * /*sender*/)
{
    m_ui->allTeamMembers->isChecked() ? m_ui->teamMembers->selectAll() : m_ui->teamMembers->clearSelection();
}

template<typename Contact>
QList<Contact> ViewControllerSending::selected(const ContactTable *table) const
{
    QModelIndexList rows = table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QList<Contact> contacts;
    for (const QModelIndex &row : std::as_const(rows))
        contacts += Contact{.name = row.siblingAtColumn(NameColumn).data(Qt::EditRole).toString(),
                            .phoneNo = row.siblingAtColumn(PhoneNoColumn).data(Qt::EditRole).toString()};
    return contacts;
}

bool ViewControllerSending::isConfirmed(const QString &question, const QString &text)
{
    const bool confirmed = m_utilities.dialogOKCancel(question, text);
    trace("---Are You Sure:", confirmed, "---");
    return confirmed;
}

void ViewControllerSending::SendScheduleToClients(QObject * /*sender*/)
{
    sendSchedules(
        {.kind = SendingJob::Kind::ClientSchedules, .clients = selected<Clients>(m_ui->clientsTable)},
        QStringLiteral("No Client Selected"));
}

void ViewControllerSending::SendScheduleToTeamMembers(QObject * /*sender*/)
{
    sendSchedules({.kind = SendingJob::Kind::TeamMemberSchedules,
                   .teamMembers = selected<TeamMembers>(m_ui->teamMembers)},
                  QStringLiteral("No Team Member Selected"));
}

bool ViewControllerSending::areDaysReadable()
{
    for (DateField *field : {m_ui->startSendDate, m_ui->endSendDate}) {
        if (!field->judge()) {
            m_ui->sendingInfo->setText(field->validationError());
            field->edit();
            return false;
        }
    }
    return true;
}

void ViewControllerSending::sendSchedules(SendingJob job, const QString &nobodySelected)
{
    if (!areDaysReadable())
        return;
    success = true;
    job.tasks = scheduledOrder(m_store.tasks());
    job.terms = {.rangeStart = m_ui->startSendDate->date().startOfDay(),
                 .rangeEnd = m_ui->endSendDate->date().startOfDay(),
                 .title = m_store.getMessageTitle(),
                 .footer = m_store.getMessageFooter(),
                 .shortDate = [](const QDateTime &moment) { return shortDate(moment); }};
    showRange(job);
    const bool confirmed =
        isConfirmed(QStringLiteral("Are you sure that you want to send Schedules via SMS using Twilio?"),
                    QStringLiteral("Scheduling") + account);
    if (job.clients.isEmpty() && job.teamMembers.isEmpty())
        m_utilities.dialogOK(nobodySelected);
    else if (confirmed)
        start(job);
}

void ViewControllerSending::sendSingleSMSToClientTeamMember(QObject * /*sender*/)
{
    success = true;
    const bool confirmed =
        isConfirmed(QStringLiteral("Are you sure that you want to send SMS messages using Twilio?"),
                    QStringLiteral("SMS") + account);
    const SendingJob job = {.kind = SendingJob::Kind::FreeText,
                            .clients = selected<Clients>(m_ui->clientsTable),
                            .teamMembers = selected<TeamMembers>(m_ui->teamMembers),
                            .text = m_ui->smsText->text()};
    if (job.totalSteps() == 0)
        m_utilities.dialogOK(QStringLiteral("No Client or Team Member Selected"));
    else if (confirmed)
        start(job);
}

void ViewControllerSending::start(const SendingJob &job)
{
    if (m_run.isRunning())
        return;
    showRange(job);
    setSendingEnabled(false, false);
    m_ui->sendingInfo->setText(QStringLiteral("Sending..."));
    QThread::usleep(100);
    m_run.start(job);
}

void ViewControllerSending::showRange(const SendingJob &job)
{
    // A bar from 0 to 0 would show that something goes on without an end.
    const qint64 last = std::clamp<qint64>(job.totalSteps(), 1, std::numeric_limits<int>::max());
    m_ui->progressBar->setRange(job.kind == SendingJob::Kind::FreeText ? 1 : 0, static_cast<int>(last));
    m_ui->progressBar->reset(); // to just below the first step, where no value can be set
    m_ui->progressBar->setValue(0);
}

void ViewControllerSending::showProgress()
{
    m_ui->progressBar->setValue(
        static_cast<int>(std::min<qint64>(progressIndex, m_ui->progressBar->maximum())));
    m_ui->sendingInfo->setText(m_run.job().progressText(progressIndex, noOfSchedules));
}

void ViewControllerSending::showEnd()
{
    setSendingEnabled(true, true);
    m_ui->sendingInfo->setText(m_run.job().doneText(progressIndex, noOfSchedules));
    tellFailure(m_utilities);
}

void ViewControllerSending::tellFailure(UIUtil &utilities)
{
    if (!success)
        utilities.dialogOK(QStringLiteral("Error Sending Messages. Check Twilio Configuration.\n") +
                           lastResponse());
}

void ViewControllerSending::showSelection()
{
    const auto show = [](QCheckBox *box, const ContactTable *table, const QString &words) {
        const auto count = table->selectionModel()->selectedRows().size();
        box->setText(words.arg(count));
        box->setChecked(count > 0 && count == table->model()->rowCount());
    };
    show(m_ui->allClients, m_ui->clientsTable, tr("A&ll clients (%1 selected)"));
    show(m_ui->allTeamMembers, m_ui->teamMembers, tr("All team &members (%1 selected)"));
}

void ViewControllerSending::showLength()
{
    const qsizetype left = longestSms - characterCount(m_ui->smsText->text());
    m_ui->lengthLabel->setText(left >= 0 ? tr("%1 of %2 characters left").arg(left).arg(longestSms)
                                         : tr("%1 characters too long; the end will be cut off").arg(-left));
}

void ViewControllerSending::setSendingEnabled(bool schedules, bool text)
{
    m_ui->sendMsgClients->setEnabled(schedules);
    m_ui->sendMsgTeamMembers->setEnabled(schedules);
    m_ui->sendSMSClientsTeamMembers->setEnabled(text);
}

void ViewControllerSending::closeSending(QObject * /*sender*/)
{
    close();
}

void ViewControllerSending::dataErased(DataKind kind)
{
    if (kind == DataKind::Clients || kind == DataKind::TeamMembers)
        reload();
}

} // namespace oblino
