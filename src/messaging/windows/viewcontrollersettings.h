#pragma once

#include <QDialog>

#include <functional>
#include <memory>

class QCheckBox;
class QLineEdit;

namespace oblino {

namespace Ui {
class ViewControllerSettings;
}

class TaskManager;
class UIUtil;

/// The window in which the settings of messages are entered. It shows the stored ones whenever it appears.
class ViewControllerSettings : public QDialog
{
    Q_OBJECT

public:
    /// Sends a message, and returns when that is over; answers whether it went through.
    using Send = std::function<bool(const QString &message, const QString &toNumber)>;

    ViewControllerSettings(TaskManager &store, UIUtil &utilities, Send send, QWidget *parent = nullptr);
    ~ViewControllerSettings() override;

    void viewWillAppear();

    // What the controls call

    void saveSettings();
    void setSettings(QObject *sender);
    void SendTestMessage(QObject *sender);
    void resetToOriginal(QObject *sender);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void connectControls();
    void showHints();
    void showSecret(bool shown);

    TaskManager &m_store;
    UIUtil &m_utilities;
    Send m_send;
    std::unique_ptr<Ui::ViewControllerSettings> m_ui;

    // Outlets

    QLineEdit *secureID = nullptr;
    QLineEdit *passPhrase = nullptr;
    QLineEdit *sendingPhoneNo = nullptr;
    QLineEdit *messageTitle = nullptr;
    QCheckBox *sendSMS = nullptr;
    QLineEdit *testPhoneNo = nullptr;
    QCheckBox *overwritePhoneNo = nullptr;
    QLineEdit *messageFooter = nullptr;
    QLineEdit *delayMS = nullptr;
};

} // namespace oblino
