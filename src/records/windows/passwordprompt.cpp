#include <records/windows/passwordprompt.h>

#include <records/cloudsession.h>
#include <ui_passwordprompt.h>

#include <QPointer>
#include <QPushButton>

namespace oblino {

PasswordPrompt::PasswordPrompt(CloudSession &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_ui(std::make_unique<Ui::PasswordPrompt>())
{
    m_ui->setupUi(this);
    m_ui->buttons->addButton(tr("OK"), QDialogButtonBox::AcceptRole)->setDefault(true);
    m_ui->buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    const CloudAccount &account = session.account();
    const QString words = tr("The cloud records of %1 on %2 need a password.\n"
                             "Leave it empty if the server asks for none.")
                              .arg(account.user, account.host);
    m_ui->accountLabel->setText(session.wasRefused() ? tr("The server refused the password that was used.") +
                                                           QLatin1Char('\n') + words
                                                     : words);
    m_ui->rememberBox->setChecked(session.isRemembered());
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &PasswordPrompt::accept);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &PasswordPrompt::reject);
    connect(&session, &CloudSession::passwordChanged, this, &PasswordPrompt::followSession);
    followSession();
}

PasswordPrompt::~PasswordPrompt() = default;

void PasswordPrompt::accept()
{
    disconnect(&m_session, nullptr, this, nullptr);
    m_session.setPassword(m_ui->passwordField->text(), m_ui->rememberBox->isChecked());
    QDialog::accept();
}

void PasswordPrompt::followSession()
{
    if (!m_session.needsPassword())
        QDialog::accept();
    m_ui->rememberBox->setEnabled(m_session.canRemember());
    m_ui->rememberBox->setToolTip(m_session.canRemember() ? QString()
                                                          : tr("There is no keyring that can be used."));
    if (!m_session.canRemember())
        m_ui->rememberBox->setChecked(false);
}

bool ensurePassword(CloudSession &session, QWidget *parent)
{
    if (!session.needsPassword())
        return true;
    const QPointer prompt = new PasswordPrompt(session, parent); // the parent may go while it is asked
    prompt->exec();
    delete prompt;
    return !session.needsPassword();
}

} // namespace oblino
