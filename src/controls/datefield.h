#pragma once

#include <controls/typedfield.h>

#include <QDate>

class QCalendarWidget;

namespace oblino {

/// A field for a day, with a calendar.
class DateField : public TypedField
{
    Q_OBJECT

public:
    explicit DateField(QWidget *parent = nullptr);

    /// Shows a day, be it in the range or not; tells nobody.
    void setDate(QDate day);
    /// The day that was set, or that was last judged to be meant.
    [[nodiscard]] QDate date() const { return m_day; }
    /// The days that can be entered.
    void setDayRange(QDate first, QDate last);

Q_SIGNALS:
    /// The user has chosen another day.
    void dateChosen(QDate day);

protected:
    [[nodiscard]] QString normalText() const override;
    void take(const QString &text) override;
    [[nodiscard]] QString errorOf(const QString &text) const override;
    [[nodiscard]] QString readingOf(const QString &text) const override;
    void step(int steps, bool large) override;
    void fillPopup(QFrame *popup) override;

private:
    void choose(QDate day);

    QDate m_day;
    QDate m_first;
    QDate m_last;
};

} // namespace oblino
