#include <controls/datefield.h>

#include <base/clock.h>
#include <base/typedday.h>

#include <QCalendarWidget>
#include <QFrame>
#include <QLineEdit>
#include <QLocale>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace oblino {

namespace {

// The calendar's own weekends are red and its arrows green.
void calm(QCalendarWidget *calendar)
{
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        calendar->setWeekdayTextFormat(day, QTextCharFormat());
    QTextCharFormat now;
    now.setFontWeight(QFont::Bold);
    now.setFontUnderline(true);
    calendar->setDateTextFormat(today(), now);
    const auto setArrow = [calendar](const char *name, Qt::ArrowType arrow) {
        if (auto *button = calendar->findChild<QToolButton *>(QLatin1String(name))) {
            button->setArrowType(arrow);
            QPalette onBar = button->palette();
            onBar.setColor(QPalette::ButtonText, calendar->palette().color(QPalette::HighlightedText));
            button->setPalette(onBar);
        }
    };
    setArrow("qt_calendar_prevmonth", Qt::LeftArrow);
    setArrow("qt_calendar_nextmonth", Qt::RightArrow);
}

} // namespace

DateField::DateField(QWidget *parent)
    : TypedField(QStringLiteral("calendar"), tr("Calendar (F4)"), parent)
{
}

void DateField::setDate(QDate day)
{
    m_day = day;
    showValue();
}

void DateField::setDayRange(QDate first, QDate last)
{
    m_first = first;
    m_last = last;
}

QString DateField::normalText() const
{
    return shortDay(m_day, QLocale());
}

void DateField::take(const QString &text)
{
    choose(readDay(text, QLocale(), today()).value_or(m_day));
}

QString DateField::errorOf(const QString &text) const
{
    const std::optional<QDate> day = readDay(text, QLocale(), today());
    if (!day)
        return text.trimmed().isEmpty() ? tr("A date is missing.")
                                        : tr("“%1” is not a date.").arg(text.simplified().left(30));
    if (m_first.isValid() && (*day < m_first || *day > m_last))
        return tr("The list holds the years %1 to %2.").arg(m_first.year()).arg(m_last.year());
    return {};
}

QString DateField::readingOf(const QString &text) const
{
    const QDate day = text == normalText() ? m_day : readDay(text, QLocale(), today()).value_or(QDate());
    return QLocale().toString(day, QLocale::LongFormat);
}

void DateField::step(int steps, bool large)
{
    const QDate day = large ? m_day.addMonths(steps) : m_day.addDays(steps);
    choose(m_first.isValid() ? std::clamp(day, m_first, m_last) : day);
    lineEdit()->selectAll();
}

void DateField::choose(QDate day)
{
    const bool isOther = day != m_day;
    m_day = day;
    showValue();
    if (isOther)
        Q_EMIT dateChosen(day);
}

void DateField::fillPopup(QFrame *popup)
{
    auto *calendar = new QCalendarWidget(popup);
    calendar->setObjectName(QStringLiteral("calendar"));
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    if (m_first.isValid())
        calendar->setDateRange(m_first, m_last);
    calendar->setSelectedDate(m_day);
    calm(calendar);
    popup->layout()->addWidget(calendar);
    popup->setFocusProxy(calendar);
    calendar->setFocus();
    const auto take = [this](QDate day) {
        choose(day);
        closePopup();
    };
    connect(calendar, &QCalendarWidget::clicked, this, take);
    connect(calendar, &QCalendarWidget::activated, this, take);
}

} // namespace oblino
