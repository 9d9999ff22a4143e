#pragma once

#include <base/alert.h>
#include <base/sound.h>

#include <QDate>
#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>
#include <utility>

namespace oblino {

class TimeField;

/// The small routines that every window uses: modal questions, the one-line cut of a description, day
/// comparisons, the sound, time pickers and the twelve-hour time text.
class UIUtil
{
public:
    explicit UIUtil(std::unique_ptr<Alert> alert);
    UIUtil(const UIUtil &) = delete;
    UIUtil &operator=(const UIUtil &) = delete;
    ~UIUtil();

    /// Replaces the way in which questions are asked.
    void setAlert(std::unique_ptr<Alert> alert);

    /// Asks a question with buttons of its own.
    /// @return the index of the button that was pressed; none when the question ended without an answer
    [[nodiscard]] std::optional<int> ask(const Alert::Question &question);
    /// @return whether "OK" was pressed
    [[nodiscard]] bool dialogOKCancel(const QString &question, const QString &text);
    /// @return whether "Yes" was pressed
    [[nodiscard]] bool dialogYesNo(const QString &question, const QString &text);
    /// @return true, once the alert is gone
    bool dialogOK(const QString &text);

    /// The text before its first line feed, followed by "..."; a text without a line feed as it is.
    [[nodiscard]] QString truncUntilNL(const QString &text) const;

    /// Compares two moments by calendar day. As an `int`: 1 when the first is on an earlier day, 0 on the
    /// same day, -1 when it is on a later day. As a `bool`: whether the first is on or before the day of the
    /// second.
    template<typename Result>
    [[nodiscard]] Result compareDate(const QDateTime &date1, const QDateTime &date2) const;

    /// Sets where sounds come from; without it there are none.
    void setSounds(SoundMaker sounds) { m_sounds = std::move(sounds); }
    void prepareSound();
    void playSound();

    /// 0..23
    [[nodiscard]] int getHourFromDatePicker(const TimeField &datePicker) const;
    /// 0..59
    [[nodiscard]] int getMinuteFromDatePicker(const TimeField &datePicker) const;
    /// Hours and minutes outside 0..23 and 0..59 count as the nearest inside.
    void setTimeDatePicker(TimeField &datePicker, qint64 hour, qint64 min) const;

    /// The time of day on a twelve-hour clock, as in 12:05AM.
    [[nodiscard]] QString amPM(qint64 hour, qint64 min) const;

private:
    std::unique_ptr<Alert> m_alert;
    SoundMaker m_sounds;
    std::unique_ptr<Sound> soundPlayer; // none until prepareSound() has found the sound
};

template<>
int UIUtil::compareDate<int>(const QDateTime &date1, const QDateTime &date2) const;
template<>
bool UIUtil::compareDate<bool>(const QDateTime &date1, const QDateTime &date2) const;

/// The utilities of the application, made on first use.
[[nodiscard]] UIUtil &uiUtil();

} // namespace oblino
