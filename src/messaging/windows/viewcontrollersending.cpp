#include <messaging/windows/viewcontrollersending.h>

#include <base/clock.h>
#include <base/trace.h>
#include <contacts/windows/contactlist.h>
#include <contacts/windows/contacttable.h>
#include <controls/datefield.h>
#include <controls/windowsize.h>
#include <core/filedays.h>
#include <core/taskmanager.h>
#include <messaging/sendingsettings.h>
#include <messaging/smsmessage.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollersending.h>

#include <QHideEvent>
#include <QLocale>
#include <QPushButton>
#include <QShowEvent>
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
    : QDialog(parent)
    , m_store(store)
    , m_utilities(utilities)
    , m_run(run)
    , m_contacts(contacts)
    , m_ui(std::make_unique<Ui::ViewControllerSending>())
{
    m_ui->setupUi(this);
    bindOutlets();
    viewDidLoad();
    connectControls();
}

ViewControllerSending::~ViewControllerSending()
{
    hide(); // which saves
}

void ViewControllerSending::bindOutlets()
{
    clientsTable = m_ui->clientsTable;
    teamMembers = m_ui->teamMembers;
    allClients = m_ui->allClients;
    allTeamMembers = m_ui->allTeamMembers;
    clientsArray = new ContactList(this);
    teamMembersArray = new ContactList(this);
    startSendDate = m_ui->startSendDate;
    endSendDate = m_ui->endSendDate;
    sendMsgClients = m_ui->sendMsgClients;
    sendMsgTeamMembers = m_ui->sendMsgTeamMembers;
    sendSMSClientsTeamMembers = m_ui->sendSMSClientsTeamMembers;
    progressBar = m_ui->progressBar;
    sendingInfo = m_ui->sendingInfo;
    smsText = m_ui->smsText;
    const FileDays days = fileDays(today());
    for (DateField *field : {startSendDate, endSendDate})
        field->setDayRange(days.first, days.last);
    startSendDate->setDate(today());
    endSendDate->setDate(today().addDays(daysShown));
}

void ViewControllerSending::connectControls()
{
    connect(allClients, &QCheckBox::clicked, this, [this] { selectClients(allClients); });
    connect(allTeamMembers, &QCheckBox::clicked, this, [this] { selectTeamMembers(allTeamMembers); });
    connect(sendMsgClients, &QPushButton::clicked, this, [this] { SendScheduleToClients(sendMsgClients); });
    connect(sendMsgTeamMembers, &QPushButton::clicked, this,
            [this] { SendScheduleToTeamMembers(sendMsgTeamMembers); });
    connect(sendSMSClientsTeamMembers, &QPushButton::clicked, this,
            [this] { sendSingleSMSToClientTeamMember(sendSMSClientsTeamMembers); });
    connect(m_ui->closeButton, &QPushButton::clicked, this, [this] { closeSending(m_ui->closeButton); });
    connect(smsText, &QLineEdit::textChanged, this, &ViewControllerSending::showLength);
    for (ContactTable *table : {clientsTable, teamMembers})
        connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                &ViewControllerSending::showSelection);
    connect(&m_run, &SendingRun::progressed, this, &ViewControllerSending::showProgress);
    connect(&m_run, &SendingRun::finished, this, &ViewControllerSending::showEnd);
    showLength();
    showSelection();
}

void ViewControllerSending::viewDidLoad()
{
    persistentContainer = std::make_unique<PersistentContainer>(m_contacts);
    const StoreLoading loading = loadTraced(*persistentContainer);
    managedObjectContext = persistentContainer->viewContext();
    const auto message = [&loading](const QString &nobody, const QString &unopened) {
        return loading.error.isEmpty() ? nobody : unopened + QLatin1String("\n\n") + loading.error;
    };
    prepare(clientsTable, clientsArray, Clients::fetchRequest(),
            message(tr("No clients yet.\nEnter them in Tools ▸ Clients."),
                    tr("The clients could not be opened, so none are shown here.")));
    prepare(teamMembers, teamMembersArray, TeamMembers::fetchRequest(),
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
    table->setSelectionMode(QAbstractItemView::MultiSelection);
    table->setEmptyMessage(emptyMessage);
}

void ViewControllerSending::viewWillAppear()
{
    setLeastSize(*this, {469, 763});
}

void ViewControllerSending::viewDidAppear()
{
    const QStringList missing = missingSettings(m_store);
    setSendingEnabled(missing.isEmpty() && !m_run.isRunning(), !m_run.isRunning());
    const QString why =
        missing.isEmpty()
            ? QString()
            : tr("Tools ▸ Messaging Settings still needs %1.").arg(missing.join(QLatin1String(", ")));
    for (QPushButton *button : {sendMsgClients, sendMsgTeamMembers})
        button->setToolTip(why);
    if (m_run.isRunning()) {
        showRange(m_run.job());
        showProgress();
    } else if (!why.isEmpty()) {
        sendingInfo->setText(why);
    }
}

void ViewControllerSending::viewWillDisappear()
{
    if (managedObjectContext)
        (void)managedObjectContext->save();
}

void ViewControllerSending::selectClients(QObject * /*sender*/)
{
    allClients->isChecked() ? clientsTable->selectAll() : clientsTable->clearSelection();
}

void ViewControllerSending::selectTeamMembers(QObject * /*sender*/)
{
    allTeamMembers->isChecked() ? teamMembers->selectAll() : teamMembers->clearSelection();
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
    sendSchedules({.kind = SendingJob::Kind::ClientSchedules, .clients = selected<Clients>(clientsTable)},
                  QStringLiteral("No Client Selected"));
}

void ViewControllerSending::SendScheduleToTeamMembers(QObject * /*sender*/)
{
    sendSchedules(
        {.kind = SendingJob::Kind::TeamMemberSchedules, .teamMembers = selected<TeamMembers>(teamMembers)},
        QStringLiteral("No Team Member Selected"));
}

bool ViewControllerSending::areDaysReadable()
{
    for (DateField *field : {startSendDate, endSendDate}) {
        if (!field->judge()) {
            sendingInfo->setText(field->validationError());
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
    job.terms = {.rangeStart = startSendDate->date().startOfDay(),
                 .rangeEnd = endSendDate->date().startOfDay(),
                 .title = m_store.getMessageTitle(),
                 .footer = m_store.getMessageFooter(),
                 .shortDate = [locale = QLocale()](const QDateTime &moment) {
                     return locale.toString(moment.date(), QLocale::ShortFormat);
                 }};
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
                            .clients = selected<Clients>(clientsTable),
                            .teamMembers = selected<TeamMembers>(teamMembers),
                            .text = smsText->text()};
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
    sendingInfo->setText(QStringLiteral("Sending..."));
    QThread::usleep(100);
    m_run.start(job);
}

void ViewControllerSending::showRange(const SendingJob &job)
{
    // A bar from 0 to 0 would show that something goes on without an end.
    const qint64 last = std::clamp<qint64>(job.totalSteps(), 1, std::numeric_limits<int>::max());
    progressBar->setRange(job.kind == SendingJob::Kind::FreeText ? 1 : 0, static_cast<int>(last));
    progressBar->reset(); // to just below the first step, where no value can be set
    progressBar->setValue(0);
}

void ViewControllerSending::showProgress()
{
    progressBar->setValue(static_cast<int>(std::min<qint64>(progressIndex, progressBar->maximum())));
    sendingInfo->setText(m_run.job().progressText(progressIndex, noOfSchedules));
}

void ViewControllerSending::showEnd()
{
    setSendingEnabled(true, true);
    sendingInfo->setText(m_run.job().doneText(progressIndex, noOfSchedules));
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
    show(allClients, clientsTable, tr("A&ll clients (%1 selected)"));
    show(allTeamMembers, teamMembers, tr("All team &members (%1 selected)"));
}

void ViewControllerSending::showLength()
{
    const qsizetype left = longestSms - characterCount(smsText->text());
    m_ui->lengthLabel->setText(left >= 0 ? tr("%1 of %2 characters left").arg(left).arg(longestSms)
                                         : tr("%1 characters too long; the end will be cut off").arg(-left));
}

void ViewControllerSending::setSendingEnabled(bool schedules, bool text)
{
    sendMsgClients->setEnabled(schedules);
    sendMsgTeamMembers->setEnabled(schedules);
    sendSMSClientsTeamMembers->setEnabled(text);
}

void ViewControllerSending::closeSending(QObject * /*sender*/)
{
    close();
}

void ViewControllerSending::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        viewWillAppear();
    QDialog::showEvent(event);
    if (!event->spontaneous())
        viewDidAppear();
}

void ViewControllerSending::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous()) // else it is only minimised
        viewWillDisappear();
    QDialog::hideEvent(event);
}

} // namespace oblino
