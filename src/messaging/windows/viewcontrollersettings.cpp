#include <messaging/windows/viewcontrollersettings.h>

#include <base/datakind.h>
#include <base/trace.h>
#include <core/taskmanager.h>
#include <messaging/sendingsettings.h>
#include <messaging/sendingstate.h>
#include <messaging/smsmessage.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollersettings.h>

#include <QApplication>
#include <QPushButton>

#include <limits>

namespace oblino {

ViewControllerSettings::ViewControllerSettings(TaskManager &store, UIUtil &utilities, Send send,
                                               QWidget *parent)
    : ToolWindow(parent, {478, 408})
    , m_store(store)
    , m_utilities(utilities)
    , m_send(std::move(send))
    , m_ui(std::make_unique<Ui::ViewControllerSettings>())
{
    m_ui->setupUi(this);
    connectControls();
}

ViewControllerSettings::~ViewControllerSettings() = default;

void ViewControllerSettings::connectControls()
{
    connect(m_ui->saveButton, &QPushButton::clicked, this, [this] { setSettings(m_ui->saveButton); });
    connect(m_ui->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->testButton, &QPushButton::clicked, this, [this] { SendTestMessage(m_ui->testButton); });
    connect(m_ui->resetButton, &QPushButton::clicked, this, [this] { resetToOriginal(m_ui->resetButton); });
    connect(m_ui->showSecretButton, &QPushButton::toggled, this, &ViewControllerSettings::showSecret);
    for (QLineEdit *field : findChildren<QLineEdit *>())
        field->setMaxLength(std::numeric_limits<int>::max()); // else it would cut what is stored
    for (QLineEdit *field : {m_ui->secureID, m_ui->passPhrase, m_ui->sendingPhoneNo, m_ui->delayMS})
        connect(field, &QLineEdit::textChanged, this, &ViewControllerSettings::showHints);
    connect(m_ui->sendSMS, &QCheckBox::toggled, this, &ViewControllerSettings::showHints);
}

void ViewControllerSettings::viewWillAppear()
{
    m_ui->showSecretButton->setChecked(false);
    m_ui->secureID->setText(m_store.getTwilioSID());
    m_ui->passPhrase->setText(m_store.getTwilioSecret());
    m_ui->sendingPhoneNo->setText(m_store.getTwilioSendingPhoneNo());
    m_ui->messageTitle->setText(m_store.getMessageTitle());
    m_ui->testPhoneNo->setText(m_store.getTestPhoneNo());
    m_ui->messageFooter->setText(m_store.getMessageFooter());
    m_ui->sendSMS->setChecked(m_store.getNotification());
    m_ui->overwritePhoneNo->setChecked(m_store.getOverwrite());
    m_ui->delayMS->setText(QString::number(m_store.getDelay()));
    showHints();
}

void ViewControllerSettings::saveSettings()
{
    m_store.setTwilioSecret(m_ui->passPhrase->text());
    m_store.setTwilioSID(m_ui->secureID->text());
    m_store.setTwilioSendingPhoneNo(m_ui->sendingPhoneNo->text());
    m_store.setNotification(m_ui->sendSMS->checkState() == Qt::Checked);
    m_store.setMessageTitle(m_ui->messageTitle->text());
    m_store.setTestOhoneNo(m_ui->testPhoneNo->text());
    m_store.setOverwrite(m_ui->overwritePhoneNo->checkState() == Qt::Checked);
    m_store.setMessageFooter(m_ui->messageFooter->text());
    m_store.setDelay(leadingInteger(m_ui->delayMS->text()));
}

void ViewControllerSettings::setSettings(QObject * /*sender*/)
{
    saveSettings();
    if (!m_store.saveSettings())
        m_utilities.dialogOK(tr("The settings could not be written to disk. They hold until Oblino ends."));
    close();
}

void ViewControllerSettings::SendTestMessage(QObject * /*sender*/)
{
    saveSettings();
    // Nothing is painted until the service has answered.
    m_ui->missingLabel->setText(tr("Sending a test message…"));
    m_ui->missingLabel->repaint();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool sent = m_send(QStringLiteral("Test"), m_ui->testPhoneNo->text());
    QApplication::restoreOverrideCursor();
    showHints();
    trace("---Last Response:", SendingState::lastResponse());
    trace("---Success:", SendingState::success.load(), "---");
    if (sent)
        m_utilities.dialogOK(QStringLiteral("Test Message sent to:") + m_ui->testPhoneNo->text());
    else
        m_utilities.dialogOK(QStringLiteral("Error sending test message\n") + SendingState::lastFailure());
}

void ViewControllerSettings::resetToOriginal(QObject * /*sender*/)
{
    for (QLineEdit *field : {m_ui->secureID, m_ui->passPhrase, m_ui->sendingPhoneNo, m_ui->messageTitle,
                             m_ui->testPhoneNo, m_ui->messageFooter})
        field->clear();
    m_ui->sendSMS->setChecked(false);
    m_ui->overwritePhoneNo->setChecked(false);
    m_ui->delayMS->setText(QStringLiteral("0"));
}

void ViewControllerSettings::dataErased(DataKind kind)
{
    if (kind == DataKind::Settings)
        viewWillAppear();
}

void ViewControllerSettings::showHints()
{
    const QStringList missing =
        missingSettings(m_ui->secureID->text(), m_ui->passPhrase->text(), m_ui->sendingPhoneNo->text(),
                        m_ui->sendSMS->checkState() == Qt::Checked);
    m_ui->missingLabel->setText(
        missing.isEmpty() ? tr("Nothing is missing: schedules can be sent.")
                          : tr("Sending schedules still needs %1.").arg(missing.join(QLatin1String(", "))));
    const qint64 delay = leadingInteger(m_ui->delayMS->text());
    const auto used = std::chrono::duration_cast<std::chrono::milliseconds>(smsPause(delay)).count();
    const bool isPlain = m_ui->delayMS->text().trimmed() == QString::number(delay) && used == delay;
    m_ui->delayHint->setText(isPlain ? tr("ms after each message") : tr("counts as %1 ms").arg(used));
}

void ViewControllerSettings::showSecret(bool shown)
{
    m_ui->passPhrase->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    m_ui->showSecretButton->setText(shown ? tr("&Hide") : tr("S&how"));
}

} // namespace oblino
