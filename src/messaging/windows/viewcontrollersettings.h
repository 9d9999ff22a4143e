#pragma once

#include <controls/toolwindow.h>

#include <functional>
#include <memory>

namespace oblino {

namespace Ui {
class ViewControllerSettings;
}

class TaskManager;
class UIUtil;

/// The window in which the settings of messages are entered. It shows the stored ones whenever it appears.
class ViewControllerSettings : public ToolWindow
{
    Q_OBJECT

public:
    /// Sends a message, and returns when that is over; answers whether it went through.
    using Send = std::function<bool(const QString &message, const QString &toNumber)>;

    ViewControllerSettings(TaskManager &store, UIUtil &utilities, Send send, QWidget *parent = nullptr);
    ~ViewControllerSettings() override;

    void viewWillAppear() override;
    void dataErased(DataKind kind) override;

    // What the controls call

    void saveSettings();
    void setSettings(QObject *sender);
    void SendTestMessage(QObject *sender);
    void resetToOriginal(QObject *sender);

private:
    void connectControls();
    void showHints();
    void showSecret(bool shown);

    TaskManager &m_store;
    UIUtil &m_utilities;
    Send m_send;
    std::unique_ptr<Ui::ViewControllerSettings> m_ui;
};

} // namespace oblino
