#pragma once

#include <records/cloudaccount.h>
#include <records/cloudcontainer.h>

#include <QDialog>

#include <memory>
#include <optional>

class QPushButton;

namespace oblino {

class CloudSession;

namespace Ui {
class CloudAccountWindow;
}

/// The window in which the user says where the cloud records lie. OK hands it to the session, unless that is
/// in use; Cancel changes nothing.
class CloudAccountWindow : public QDialog
{
    Q_OBJECT

public:
    /// @param session  must live longer than the window
    explicit CloudAccountWindow(CloudSession &session, QWidget *parent = nullptr);
    ~CloudAccountWindow() override;

    void accept() override;
    void done(int result) override;

protected:
    bool event(QEvent *event) override;

private:
    struct Test;

    void connectControls();
    void showAccount(const CloudAccount &account);
    void followSession();
    void followUse();
    void showChoice();
    void showSecurity();
    void fit();

    [[nodiscard]] CloudAccount entered() const;
    [[nodiscard]] TlsMode enteredTlsMode() const;
    [[nodiscard]] bool inputIsGood();

    void startTest();
    void endTest();
    void invalidateTest();
    void showOutcome(const std::optional<CloudError> &error);

    CloudSession &m_session;
    std::unique_ptr<Ui::CloudAccountWindow> m_ui;
    QPushButton *m_okButton = nullptr;
    std::shared_ptr<Test> m_test; // the one that runs; null without one
};

} // namespace oblino
