#include <ui/uiutil.h>

#include <controls/timefield.h>

#include <base/trace.h>
#include <controls/messageboxalert.h>
#include <core/celltext.h>
#include <core/days.h>

#include <algorithm>
#include <utility>

namespace oblino {

UIUtil::UIUtil(std::unique_ptr<Alert> alert)
    : m_alert(std::move(alert))
{
}

UIUtil::~UIUtil() = default;

UIUtil &uiUtil()
{
    static UIUtil instance(std::make_unique<MessageBoxAlert>());
    return instance;
}

void UIUtil::setAlert(std::unique_ptr<Alert> alert)
{
    m_alert = std::move(alert);
}

std::optional<int> UIUtil::ask(const Alert::Question &question)
{
    return m_alert->ask(question);
}

bool UIUtil::dialogOKCancel(const QString &question, const QString &text)
{
    return m_alert->ask({question, text, {QStringLiteral("OK"), QStringLiteral("Cancel")}, 1}) == 0;
}

bool UIUtil::dialogYesNo(const QString &question, const QString &text)
{
    return m_alert->ask({question, text, {QStringLiteral("Yes"), QStringLiteral("No")}, 1}) == 0;
}

bool UIUtil::dialogOK(const QString &text)
{
    (void)m_alert->ask({{}, text, {QStringLiteral("OK")}, 0});
    return true;
}

QString UIUtil::truncUntilNL(const QString &text) const
{
    return textUntilLineFeed(text);
}

template<>
int UIUtil::compareDate<int>(const QDateTime &date1, const QDateTime &date2) const
{
    const QDate first = date1.date();
    const QDate second = date2.date();
    return first < second ? 1 : first == second ? 0 : -1;
}

template<>
bool UIUtil::compareDate<bool>(const QDateTime &date1, const QDateTime &date2) const
{
    return compareDays(date1.date(), date2.date()) != DayOrder::Descending;
}

void UIUtil::prepareSound()
{
    auto made = m_sounds ? m_sounds(QStringLiteral(":/sounds/ding.mp3")) : nullptr;
    if (!made)
        return;
    soundPlayer = std::move(made);
    soundPlayer->prepare(
        [](const QString &description) { trace("Sound player not available: ", description); });
}

void UIUtil::playSound()
{
    if (soundPlayer)
        soundPlayer->play();
}

int UIUtil::getHourFromDatePicker(const TimeField &datePicker) const
{
    return datePicker.time().hour();
}

int UIUtil::getMinuteFromDatePicker(const TimeField &datePicker) const
{
    return datePicker.time().minute();
}

void UIUtil::setTimeDatePicker(TimeField &datePicker, qint64 hour, qint64 min) const
{
    datePicker.setTime(QTime(static_cast<int>(std::clamp<qint64>(hour, 0, 23)),
                             static_cast<int>(std::clamp<qint64>(min, 0, 59))));
}

QString UIUtil::amPM(qint64 hour, qint64 min) const
{
    return oblino::amPM(hour, min);
}

} // namespace oblino
