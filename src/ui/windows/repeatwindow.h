#pragma once

#include <core/repetition.h>
#include <core/task.h>

#include <QDialog>

#include <array>
#include <memory>

class QCheckBox;
class QPushButton;

namespace oblino {

namespace Ui {
class RepeatWindow;
}

/// Asks on which days a task is to come again, and shows them. It makes no task.
class RepeatWindow : public QDialog
{
    Q_OBJECT

public:
    explicit RepeatWindow(const task &original, QWidget *parent = nullptr);
    ~RepeatWindow() override;

    /// The days that are chosen, in order.
    [[nodiscard]] QList<QDate> days() const;

private:
    void addWeekdays();
    void fillChoices();
    void connectControls();
    [[nodiscard]] Repetition entered() const;
    [[nodiscard]] QString problemOf(const Repetition &repetition) const;
    void showDays();
    void showSummary();

    std::unique_ptr<Ui::RepeatWindow> m_ui;
    QDate m_first;
    QPushButton *m_repeatButton;
    std::array<QCheckBox *, 8> m_weekdays = {}; // by Qt::DayOfWeek
    QSet<QDate> m_skipped;
};

} // namespace oblino
