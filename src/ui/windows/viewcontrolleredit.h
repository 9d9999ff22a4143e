#pragma once

#include <ui/windows/taskwindow.h>

class QLineEdit;

namespace oblino {

struct task;

/// The form in which the selected task is changed. Its dates are compared as moments. It writes to the task
/// for which it was opened, or to none: when that task is gone, it says so.
class ViewControllerEdit : public TaskWindow
{
    Q_OBJECT

public:
    explicit ViewControllerEdit(const TaskWindowContext &context, QWidget *parent = nullptr);

    void btnEditTask_Click(QObject *sender);
    void shareTask(QObject *sender);
    void ResetToOriginal();
    void CopyKeyLabel();
    void interfaceModeChanged();

protected:
    void viewDidAppear() override;

private:
    void viewDidLoad();
    void SelectDate() override;
    void SelectDueDate() override;
    [[nodiscard]] bool isInOrder(const QDateTime &start, const QDateTime &due) const override;
    void SelectColorWell();
    void traceDates() const;
    void showFields(const task &t);
    /// Selects the form's own task; says so when it is gone.
    [[nodiscard]] bool selectOwnTask();
    /// Writes what the form holds to its task. @return whether there is one
    [[nodiscard]] bool save();

    QLineEdit *keyLabel;
    QPushButton *copyKey;
    QPushButton *m_shareButton;
    bool m_observesAppearance = false;
};

} // namespace oblino
