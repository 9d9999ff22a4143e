#pragma once

#include <QDialog>

#include <memory>

namespace oblino {

class CloudSession;

namespace Ui {
class PasswordPrompt;
}

/// Asks for the password of the session's account. It closes by itself when the keyring has the password
/// after all.
class PasswordPrompt : public QDialog
{
    Q_OBJECT

public:
    PasswordPrompt(CloudSession &session, QWidget *parent);
    ~PasswordPrompt() override;

    void accept() override;

private:
    void followSession();

    CloudSession &m_session;
    std::unique_ptr<Ui::PasswordPrompt> m_ui;
};

/// Sees to it that the session has the password that it needs, and asks the user where it must.
/// @return false when the user cancelled
[[nodiscard]] bool ensurePassword(CloudSession &session, QWidget *parent);

} // namespace oblino
