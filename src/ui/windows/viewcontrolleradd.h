#pragma once

#include <ui/windows/taskwindow.h>

namespace oblino {

/// The form in which a new task is entered. Its dates are compared by calendar day.
class ViewControllerAdd : public TaskWindow
{
    Q_OBJECT

public:
    explicit ViewControllerAdd(const TaskWindowContext &context, QWidget *parent = nullptr);

    void btnAddTask_Click();
    void ResetToOriginal();
    void interfaceModeChanged();

protected:
    void viewWillAppear() override;

private:
    void viewDidLoad();
    void SelectDate() override;
    void SelectDueDate() override;
    [[nodiscard]] bool isInOrder(const QDateTime &start, const QDateTime &due) const override;
    void selectColorWell();
    void chooseNow();
    /// A form in which nothing was entered yet goes on with the day.
    void dayChanged();
};

} // namespace oblino
