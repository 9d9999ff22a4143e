#include <controls/timefield.h>

#include <base/typedtime.h>

#include <QFrame>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace oblino {

namespace {

constexpr int shownLength = 10; // characters
constexpr int stepMinutes = 15;
constexpr int listedMinutes = 30; // between two times of the list
constexpr int minutesOfDay = 24 * 60;
constexpr int listedRows = 10; // seen at a time

int minuteOfDay(QTime time)
{
    return time.hour() * 60 + time.minute();
}

QTime timeOfMinute(int minute)
{
    return QTime(minute / 60, minute % 60);
}

} // namespace

TimeField::TimeField(QWidget *parent)
    : TypedField(QStringLiteral("clock"), tr("Times (F4)"), parent)
{
    lineEdit()->setMinimumWidth(fontMetrics().averageCharWidth() * shownLength);
}

void TimeField::setTime(QTime time)
{
    m_time = time;
    showValue();
}

QString TimeField::normalText() const
{
    return shortTime(m_time, QLocale());
}

void TimeField::take(const QString &text)
{
    choose(readTime(text, QLocale()).value_or(m_time));
}

QString TimeField::errorOf(const QString &text) const
{
    if (readTime(text, QLocale()))
        return {};
    return text.trimmed().isEmpty() ? tr("A time is missing.")
                                    : tr("“%1” is not a time.").arg(text.simplified().left(30));
}

QString TimeField::readingOf(const QString &text) const
{
    const std::optional<QTime> time = text == normalText() ? std::nullopt : readTime(text, QLocale());
    return time ? shortTime(*time, QLocale()) : QString();
}

// From a time between two steps to the next of them; the day ends there.
void TimeField::step(int steps, bool large)
{
    const int minutes = minuteOfDay(m_time);
    const int size = large ? 60 : stepMinutes;
    const int towards = large ? minutes : (steps > 0 ? minutes / size : (minutes + size - 1) / size) * size;
    choose(timeOfMinute(std::clamp(towards + steps * size, 0, minutesOfDay - 1)));
    lineEdit()->selectAll();
}

void TimeField::choose(QTime time)
{
    const bool isOther = time != m_time;
    m_time = time;
    showValue();
    if (isOther)
        Q_EMIT timeChosen(time);
}

void TimeField::fillPopup(QFrame *popup)
{
    auto *list = new QListWidget(popup);
    list->setObjectName(QStringLiteral("times"));
    list->setFrameShape(QFrame::NoFrame);
    for (int minute = 0; minute < minutesOfDay; minute += listedMinutes) {
        auto *item = new QListWidgetItem(shortTime(timeOfMinute(minute), QLocale()), list);
        item->setData(Qt::UserRole, timeOfMinute(minute));
    }
    list->setCurrentRow(minuteOfDay(m_time) / listedMinutes);
    list->setFixedHeight(list->sizeHintForRow(0) * listedRows);
    list->setFixedWidth(std::max(lineEdit()->width(), list->sizeHintForColumn(0) +
                                                          list->verticalScrollBar()->sizeHint().width() + 8));
    popup->layout()->addWidget(list);
    popup->setFocusProxy(list);
    list->setFocus();
    const auto take = [this](const QListWidgetItem *item) {
        choose(item->data(Qt::UserRole).toTime());
        closePopup();
    };
    connect(list, &QListWidget::itemClicked, this, take);
    connect(list, &QListWidget::itemActivated, this, take);
}

} // namespace oblino
