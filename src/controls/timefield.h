#pragma once

#include <controls/typedfield.h>

#include <QTime>

namespace oblino {

/// A field for a time of day to the minute, with a list of times.
class TimeField : public TypedField
{
    Q_OBJECT

public:
    explicit TimeField(QWidget *parent = nullptr);

    /// Shows a time; tells nobody.
    void setTime(QTime time);
    /// The time that was set, or that was last judged to be meant.
    [[nodiscard]] QTime time() const { return m_time; }

Q_SIGNALS:
    /// The user has chosen another time.
    void timeChosen(QTime time);

protected:
    [[nodiscard]] QString normalText() const override;
    void take(const QString &text) override;
    [[nodiscard]] QString errorOf(const QString &text) const override;
    [[nodiscard]] QString readingOf(const QString &text) const override;
    void step(int steps, bool large) override;
    void fillPopup(QFrame *popup) override;

private:
    void choose(QTime time);

    QTime m_time;
};

} // namespace oblino
