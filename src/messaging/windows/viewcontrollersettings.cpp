#include <messaging/windows/viewcontrollersettings.h>

#include <base/trace.h>
#include <controls/windowsize.h>
#include <core/taskmanager.h>
#include <messaging/sendingsettings.h>
#include <messaging/sendingstate.h>
#include <messaging/smsmessage.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollersettings.h>

#include <QApplication>
#include <QPushButton>
#include <QShowEvent>

#include <limits>

namespace oblino {

ViewControllerSettings::ViewControllerSettings(TaskManager &store, UIUtil &utilities, Send send,
                                               QWidget *parent)
    : QDialog(parent)
    , m_store(store)
    , m_utilities(utilities)
    , m_send(std::move(send))
    , m_ui(std::make_unique<Ui::ViewControllerSettings>())
{
    m_ui->setupUi(this);
    secureID = m_ui->secureID;
    passPhrase = m_ui->passPhrase;
    sendingPhoneNo = m_ui->sendingPhoneNo;
    messageTitle = m_ui->messageTitle;
    sendSMS = m_ui->sendSMS;
    testPhoneNo = m_ui->testPhoneNo;
    overwritePhoneNo = m_ui->overwritePhoneNo;
    messageFooter = m_ui->messageFooter;
    delayMS = m_ui->delayMS;
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
    for (QLineEdit *field : {secureID, passPhrase, sendingPhoneNo, delayMS})
        connect(field, &QLineEdit::textChanged, this, &ViewControllerSettings::showHints);
    connect(sendSMS, &QCheckBox::toggled, this, &ViewControllerSettings::showHints);
}

void ViewControllerSettings::viewWillAppear()
{
    setLeastSize(*this, {478, 408});
    m_ui->showSecretButton->setChecked(false);
    secureID->setText(m_store.getTwilioSID());
    passPhrase->setText(m_store.getTwilioSecret());
    sendingPhoneNo->setText(m_store.getTwilioSendingPhoneNo());
    messageTitle->setText(m_store.getMessageTitle());
    testPhoneNo->setText(m_store.getTestPhoneNo());
    messageFooter->setText(m_store.getMessageFooter());
    sendSMS->setChecked(m_store.getNotification());
    overwritePhoneNo->setChecked(m_store.getOverwrite());
    delayMS->setText(QString::number(m_store.getDelay()));
    showHints();
}

void ViewControllerSettings::saveSettings()
{
    m_store.setTwilioSecret(passPhrase->text());
    m_store.setTwilioSID(secureID->text());
    m_store.setTwilioSendingPhoneNo(sendingPhoneNo->text());
    m_store.setNotification(sendSMS->checkState() == Qt::Checked);
    m_store.setMessageTitle(messageTitle->text());
    m_store.setTestOhoneNo(testPhoneNo->text());
    m_store.setOverwrite(overwritePhoneNo->checkState() == Qt::Checked);
    m_store.setMessageFooter(messageFooter->text());
    m_store.setDelay(leadingInteger(delayMS->text()));
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
    const bool sent = m_send(QStringLiteral("Test"), testPhoneNo->text());
    QApplication::restoreOverrideCursor();
    showHints();
    trace("---Last Response:", SendingState::lastResponse());
    trace("---Success:", SendingState::success.load(), "---");
    if (sent)
        m_utilities.dialogOK(QStringLiteral("Test Message sent to:") + testPhoneNo->text());
    else
        m_utilities.dialogOK(QStringLiteral("Error sending test message\n") + SendingState::lastFailure());
}

void ViewControllerSettings::resetToOriginal(QObject * /*sender*/)
{
    for (QLineEdit *field : {secureID, passPhrase, sendingPhoneNo, messageTitle, testPhoneNo, messageFooter})
        field->clear();
    sendSMS->setChecked(false);
    overwritePhoneNo->setChecked(false);
    delayMS->setText(QStringLiteral("0"));
}

void ViewControllerSettings::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        viewWillAppear();
    QDialog::showEvent(event);
}

void ViewControllerSettings::showHints()
{
    const QStringList missing = missingSettings(secureID->text(), passPhrase->text(), sendingPhoneNo->text(),
                                                sendSMS->checkState() == Qt::Checked);
    m_ui->missingLabel->setText(
        missing.isEmpty() ? tr("Nothing is missing: schedules can be sent.")
                          : tr("Sending schedules still needs %1.").arg(missing.join(QLatin1String(", "))));
    const qint64 delay = leadingInteger(delayMS->text());
    const auto used = std::chrono::duration_cast<std::chrono::milliseconds>(smsPause(delay)).count();
    const bool isPlain = delayMS->text().trimmed() == QString::number(delay) && used == delay;
    m_ui->delayHint->setText(isPlain ? tr("ms after each message") : tr("counts as %1 ms").arg(used));
}

void ViewControllerSettings::showSecret(bool shown)
{
    passPhrase->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    m_ui->showSecretButton->setText(shown ? tr("&Hide") : tr("S&how"));
}

} // namespace oblino
