#include <ui/datefield.h>

#include <core/filedays.h>
#include <platform/clock.h>

#include <QCalendarWidget>
#include <QDateEdit>
#include <QLocale>
#include <QTextCharFormat>
#include <QToolButton>

namespace oblino {

namespace {

// The calendar's own weekends are red and its arrows green.
void calm(QCalendarWidget *calendar)
{
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        calendar->setWeekdayTextFormat(day, QTextCharFormat());
    const auto setArrow = [calendar](const char *name, Qt::ArrowType arrow) {
        if (auto *button = calendar->findChild<QToolButton *>(QLatin1String(name))) {
            button->setArrowType(arrow);
            button->setForegroundRole(QPalette::HighlightedText);
        }
    };
    setArrow("qt_calendar_prevmonth", Qt::LeftArrow);
    setArrow("qt_calendar_nextmonth", Qt::RightArrow);
}

} // namespace

void prepareDateField(QDateEdit *field)
{
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    field->setDisplayFormat(format);
    const FileDays days = fileDays(today());
    field->setDateRange(days.first, days.last);
    calm(field->calendarWidget());
}

} // namespace oblino
