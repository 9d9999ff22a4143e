#include <records/windows/cloudaccountwindow.h>

#include <base/dispatch.h>
#include <controls/warninglabel.h>
#include <records/cloudaccounts.h>
#include <records/cloudsession.h>
#include <ui_cloudaccountwindow.h>

#include <QAccessible>
#include <QApplication>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <type_traits>

namespace oblino {

namespace {

constexpr std::array securities = {TlsMode::VerifyFull, TlsMode::Require, TlsMode::Disable}; // as in the box

// libpq would take a host with a blank or an address with a path for something else.
QString problemOfHost(const QString &hosts)
{
    if (hosts.isEmpty())
        return CloudAccountWindow::tr("Enter the name or the address of the server.");
    for (const QString &host : hosts.split(QLatin1Char(','))) {
        const bool hasBlank = std::any_of(host.begin(), host.end(), [](QChar c) { return c.isSpace(); });
        if (hasBlank || host.indexOf(QLatin1Char('/')) > 0)
            return CloudAccountWindow::tr("This is not the name or the address of a server: %1").arg(host);
    }
    return {};
}

void showFieldError(QWidget *field, WarningLabel *label, const QString &message)
{
    label->setWarning(message);
    field->setAccessibleDescription(message);
}

} // namespace

// What the window and the thread share that tries a place.
struct CloudAccountWindow::Test
{
    std::mutex mutex;
    CloudAccountWindow *window; // null once nobody waits for the outcome; the mutex guards it
    std::atomic<bool> isCancelled = false;
};

CloudAccountWindow::CloudAccountWindow(CloudSession &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_ui(std::make_unique<Ui::CloudAccountWindow>())
{
    m_ui->setupUi(this);
    m_okButton = m_ui->buttons->addButton(tr("OK"), QDialogButtonBox::AcceptRole);
    m_okButton->setObjectName(QStringLiteral("okButton"));
    m_okButton->setDefault(true);
    m_ui->buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_ui->testProgress->hide();
    m_ui->testResult->hide();
    showAccount(session.account());
    followSession();
    followUse();
    connectControls();
    showChoice();
    showSecurity();
    constexpr int comfortableWidth = 72; // characters
    resize(sizeHint().expandedTo({comfortableWidth * fontMetrics().averageCharWidth(), 0}));
}

CloudAccountWindow::~CloudAccountWindow()
{
    endTest();
}

void CloudAccountWindow::connectControls()
{
    for (QLineEdit *field : {m_ui->hostField, m_ui->databaseField, m_ui->userField, m_ui->passwordField})
        connect(field, &QLineEdit::textChanged, this, &CloudAccountWindow::invalidateTest);
    connect(m_ui->portField, &QSpinBox::textChanged, this, &CloudAccountWindow::invalidateTest);
    const auto renew = [this](auto *field, WarningLabel *problem) {
        using Field = std::remove_pointer_t<decltype(field)>;
        connect(field, &Field::textChanged, this, [field, problem] { showFieldError(field, problem, {}); });
    };
    renew(m_ui->hostField, m_ui->hostProblem);
    renew(m_ui->portField, m_ui->portProblem);
    renew(m_ui->databaseField, m_ui->databaseProblem);
    renew(m_ui->userField, m_ui->userProblem);
    connect(m_ui->securityBox, &QComboBox::currentIndexChanged, this, &CloudAccountWindow::showSecurity);
    connect(m_ui->serverButton, &QRadioButton::toggled, this, &CloudAccountWindow::showChoice);
    connect(m_ui->testButton, &QPushButton::clicked, this, &CloudAccountWindow::startTest);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &CloudAccountWindow::accept);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &CloudAccountWindow::reject);
    connect(&m_session, &CloudSession::passwordChanged, this, &CloudAccountWindow::followSession);
    connect(&m_session, &CloudSession::inUseChanged, this, &CloudAccountWindow::followUse);
}

void CloudAccountWindow::showAccount(const CloudAccount &account)
{
    (account.isRemote() ? m_ui->serverButton : m_ui->localButton)->setChecked(true);
    m_ui->hostField->setText(account.host);
    m_ui->portField->setValue(account.port);
    m_ui->databaseField->setText(account.database);
    m_ui->userField->setText(account.user);
    const auto *const security = std::find(securities.begin(), securities.end(), account.tlsMode);
    m_ui->securityBox->setCurrentIndex(static_cast<int>(security - securities.begin()));
}

// The keyring may answer while the window is open. What the user has typed by then stays.
void CloudAccountWindow::followSession()
{
    if (!m_ui->passwordField->isModified()) {
        m_ui->passwordField->setText(m_session.password().value_or(QString()));
        m_ui->rememberBox->setChecked(m_session.isRemembered());
    }
    if (!m_session.canRemember())
        m_ui->rememberBox->setChecked(false);
    showChoice();
}

// Another account would break off what is under way.
void CloudAccountWindow::followUse()
{
    m_okButton->setEnabled(!m_session.isInUse());
    m_okButton->setToolTip(m_session.isInUse()
                               ? tr("The cloud is being used. The account can be changed when that is done.")
                               : QString());
}

void CloudAccountWindow::showChoice()
{
    const bool onServer = m_ui->serverButton->isChecked();
    const std::initializer_list<QWidget *> ofServer = {
        m_ui->hostLabel,       m_ui->hostField,     m_ui->portLabel,     m_ui->portField,
        m_ui->databaseLabel,   m_ui->userLabel,     m_ui->databaseField, m_ui->userField,
        m_ui->passwordLabel,   m_ui->passwordField, m_ui->securityLabel, m_ui->securityBox,
        m_ui->securityWarning, m_ui->testButton};
    for (QWidget *widget : ofServer)
        widget->setEnabled(onServer);
    m_ui->rememberBox->setEnabled(onServer && m_session.canRemember());
    m_ui->rememberBox->setToolTip(m_session.canRemember() ? QString()
                                                          : tr("There is no keyring that can be used."));
    if (!onServer) {
        for (WarningLabel *problem :
             {m_ui->hostProblem, m_ui->portProblem, m_ui->databaseProblem, m_ui->userProblem})
            problem->setWarning({});
    }
    invalidateTest();
}

void CloudAccountWindow::showSecurity()
{
    switch (enteredTlsMode()) {
    case TlsMode::VerifyFull:
        m_ui->securityWarning->setWarning({});
        break;
    case TlsMode::Require:
        m_ui->securityWarning->setWarning(
            tr("Whoever answers in the server's place can read and change everything."));
        break;
    case TlsMode::Disable:
        m_ui->securityWarning->setWarning(
            tr("Everybody on the way to the server can read and change everything, "
               "the password too."));
        break;
    }
    invalidateTest();
}

CloudAccount CloudAccountWindow::entered() const
{
    if (m_ui->localButton->isChecked())
        return {};
    return {.host = normalizedHosts(m_ui->hostField->text()),
            .port = static_cast<quint16>(m_ui->portField->value()),
            .database = m_ui->databaseField->text().trimmed(),
            .user = m_ui->userField->text().trimmed(),
            .tlsMode = enteredTlsMode()};
}

TlsMode CloudAccountWindow::enteredTlsMode() const
{
    return securities.at(static_cast<std::size_t>(std::max(0, m_ui->securityBox->currentIndex())));
}

// Says what is wrong beside each field, and puts the focus into the first of them.
bool CloudAccountWindow::inputIsGood()
{
    if (m_ui->localButton->isChecked())
        return true;
    const CloudAccount account = entered();
    struct Check
    {
        QWidget *field;
        WarningLabel *label;
        QString problem;
    };
    const auto unless = [](bool good, const QString &message) { return good ? QString() : message; };
    const std::array checks = {
        Check{m_ui->hostField, m_ui->hostProblem, problemOfHost(account.host)},
        Check{m_ui->portField, m_ui->portProblem,
              unless(account.port > 0, tr("Enter the port of the server, usually 5432."))},
        Check{m_ui->databaseField, m_ui->databaseProblem,
              unless(!account.database.isEmpty(), tr("Enter the name of the database."))},
        Check{m_ui->userField, m_ui->userProblem,
              unless(!account.user.isEmpty(), tr("Enter the user name on the server."))}};
    QWidget *first = nullptr;
    for (const Check &check : checks) {
        showFieldError(check.field, check.label, check.problem);
        if (!first && !check.problem.isEmpty())
            first = check.field;
    }
    if (first)
        first->setFocus(Qt::OtherFocusReason);
    return !first;
}

void CloudAccountWindow::accept()
{
    if (m_session.isInUse() || !inputIsGood())
        return;
    const CloudAccount account = entered();
    const QString typed = m_ui->passwordField->text();
    const bool hasPassword = account.isRemote() && !typed.isEmpty();
    if (m_session.setAccount(account, hasPassword ? std::optional(typed) : std::nullopt,
                             m_ui->rememberBox->isChecked())) {
        QDialog::accept();
        return;
    }
    m_ui->testResult->setText(tr("The account could not be saved. Is the disk full?"));
    m_ui->testResult->show();
}

void CloudAccountWindow::done(int result)
{
    endTest();
    QDialog::done(result);
}

void CloudAccountWindow::startTest()
{
    if (!inputIsGood())
        return;
    m_ui->testProgress->show();
    m_ui->testButton->setEnabled(false);
    m_ui->testResult->setText(tr("Asking the server…"));
    m_ui->testResult->show();
    m_test = std::make_shared<Test>();
    m_test->window = this;
    const StoreLocation location = m_session.location(entered(), m_ui->passwordField->text());
    Dispatch::background(
        Dispatch::Priority::High, [test = m_test, location, types = m_session.recordTypes()] {
            const std::optional<CloudError> error = testConnection(location, types, test->isCancelled);
            const std::lock_guard lock(test->mutex);
            if (test->window) {
                Dispatch::main(test->window, [test, error] {
                    if (!test->isCancelled)
                        test->window->showOutcome(error);
                });
            }
        });
}

void CloudAccountWindow::endTest()
{
    if (!m_test)
        return;
    m_test->isCancelled = true;
    const std::lock_guard lock(m_test->mutex);
    m_test->window = nullptr;
    m_test.reset();
}

// An outcome tells nothing of what has been entered since.
void CloudAccountWindow::invalidateTest()
{
    endTest();
    m_ui->testProgress->hide();
    m_ui->testResult->hide();
    m_ui->testButton->setEnabled(m_ui->serverButton->isChecked());
}

void CloudAccountWindow::showOutcome(const std::optional<CloudError> &error)
{
    invalidateTest();
    m_ui->testResult->setText(error ? error->localizedDescription
                                    : tr("The server can be used: sign-in and rights are in order."));
    m_ui->testResult->show();
    QAccessibleEvent announcement(m_ui->testResult, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

bool CloudAccountWindow::event(QEvent *event)
{
    const bool handled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize)
        fit();
    return handled;
}

// A layout does not see to the height that wrapped texts need at the width of the window.
void CloudAccountWindow::fit()
{
    if (layout()->hasHeightForWidth())
        setMinimumHeight(layout()->totalHeightForWidth(width()));
}

} // namespace oblino
