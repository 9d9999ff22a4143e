#include <ui/windows/repeatwindow.h>

#include <base/clock.h>
#include <core/filedays.h>
#include <ui_repeatwindow.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>

namespace oblino {

namespace {

enum Unit { Days, Weeks, Months }; // as in the box
enum MonthRule { ByDay, ByWeekday };

constexpr int daysOfWeek = 7;

QString longDay(QDate day)
{
    return QLocale().toString(day, QLocale::LongFormat);
}

QString placeInMonth(int week)
{
    const QStringList names = {RepeatWindow::tr("first"), RepeatWindow::tr("second"),
                               RepeatWindow::tr("third"), RepeatWindow::tr("fourth"),
                               RepeatWindow::tr("last")};
    return names.value(week - 1);
}

} // namespace

RepeatWindow::RepeatWindow(const task &original, QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::RepeatWindow>())
    , m_first(original.date.date())
{
    m_ui->setupUi(this);
    m_repeatButton = m_ui->buttons->addButton(tr("&Repeat"), QDialogButtonBox::AcceptRole);
    m_repeatButton->setObjectName(QStringLiteral("repeatButton"));
    m_repeatButton->setDefault(true);
    m_ui->buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_ui->taskLabel->setTextFormat(Qt::PlainText);
    m_ui->taskLabel->setText(tr("“%1”, %2").arg(original.name.simplified(), longDay(m_first)));
    addWeekdays();
    fillChoices();
    connectControls();
    showDays();
    constexpr int lines = 8; // of days
    m_ui->preview->setMinimumHeight(lines * fontMetrics().height());
}

RepeatWindow::~RepeatWindow() = default;

// In the order of the locale's week.
void RepeatWindow::addWeekdays()
{
    const QLocale locale;
    for (int i = 0; i < daysOfWeek; ++i) {
        const int day = (locale.firstDayOfWeek() - 1 + i) % daysOfWeek + 1;
        auto *button = new QCheckBox(m_ui->weekdays);
        button->setObjectName(QStringLiteral("weekday%1").arg(day));
        button->setText(locale.dayName(day, QLocale::ShortFormat));
        button->setAccessibleName(locale.dayName(day));
        button->setToolTip(locale.dayName(day));
        m_ui->weekdayRow->addWidget(button);
        m_weekdays[static_cast<size_t>(day)] = button;
        connect(button, &QCheckBox::toggled, this, &RepeatWindow::showDays);
    }
}

void RepeatWindow::fillChoices()
{
    const QLocale locale;
    const Repetition like = repetitionLike(m_first, locale.firstDayOfWeek());
    {
        const QSignalBlocker blocker(m_weekdays[static_cast<size_t>(like.weekday)]);
        m_weekdays[static_cast<size_t>(like.weekday)]->setChecked(true);
    }
    m_ui->unit->addItems({tr("days"), tr("weeks"), tr("months")});
    m_ui->unit->setCurrentIndex(Weeks);
    m_ui->monthRule->addItems(
        {tr("on day %1").arg(like.dayOfMonth),
         tr("on the %1 %2").arg(placeInMonth(like.week), locale.dayName(like.weekday))});
    const FileDays days = fileDays(today());
    m_ui->until->setDayRange(m_first, days.last);
    m_ui->until->setDate(std::min(m_first.addMonths(3), days.last));
    m_ui->until->lineEdit()->setAccessibleName(tr("Until"));
}

void RepeatWindow::connectControls()
{
    for (QSpinBox *box : {m_ui->every, m_ui->count})
        connect(box, &QSpinBox::valueChanged, this, &RepeatWindow::showDays);
    connect(m_ui->count, &QSpinBox::valueChanged, m_ui->byCount, [this] { m_ui->byCount->setChecked(true); });
    for (QComboBox *box : {m_ui->unit, m_ui->monthRule})
        connect(box, &QComboBox::currentIndexChanged, this, &RepeatWindow::showDays);
    connect(m_ui->byCount, &QRadioButton::toggled, this, &RepeatWindow::showDays);
    connect(m_ui->until, &DateField::dateChosen, this, [this] {
        m_ui->byDay->setChecked(true);
        showDays();
    });
    connect(m_ui->preview, &QListWidget::itemChanged, this, [this](const QListWidgetItem *item) {
        const QDate day = item->data(Qt::UserRole).toDate();
        if (item->checkState() == Qt::Checked)
            m_skipped.remove(day);
        else
            m_skipped.insert(day);
        showSummary();
    });
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

Repetition RepeatWindow::entered() const
{
    Repetition repetition = repetitionLike(m_first, QLocale().firstDayOfWeek());
    const bool isByWeekday = m_ui->monthRule->currentIndex() == ByWeekday;
    switch (m_ui->unit->currentIndex()) {
    case Days:
        repetition.unit = RepetitionUnit::Days;
        break;
    case Months:
        repetition.unit = isByWeekday ? RepetitionUnit::MonthsByWeekday : RepetitionUnit::MonthsByDay;
        break;
    default:
        repetition.unit = RepetitionUnit::Weeks;
    }
    repetition.every = m_ui->every->value();
    repetition.weekdays.reset();
    for (size_t day = 1; day < m_weekdays.size(); ++day)
        repetition.weekdays.set(day, m_weekdays[day]->isChecked());
    if (m_ui->byCount->isChecked())
        repetition.count = m_ui->count->value();
    else
        repetition.until = m_ui->until->date();
    return repetition;
}

QList<QDate> RepeatWindow::days() const
{
    Repetition repetition = entered();
    repetition.skipped = m_skipped;
    return repeatedDays(repetition, m_first);
}

// Every day of the rule; those that are left out have no tick.
void RepeatWindow::showDays()
{
    m_ui->weekdays->setVisible(m_ui->unit->currentIndex() == Weeks);
    m_ui->monthRule->setVisible(m_ui->unit->currentIndex() == Months);
    const QSignalBlocker blocker(m_ui->preview);
    m_ui->preview->clear();
    for (const QDate day : repeatedDays(entered(), m_first)) {
        auto *item = new QListWidgetItem(longDay(day), m_ui->preview);
        item->setData(Qt::UserRole, day);
        item->setCheckState(m_skipped.contains(day) ? Qt::Unchecked : Qt::Checked);
    }
    showSummary();
}

QString RepeatWindow::problemOf(const Repetition &repetition) const
{
    switch (repetitionEnd(repetition, m_first)) {
    case RepetitionEnd::Most:
        return tr("At most %1 copies are made: the first ones.").arg(mostRepeatedDays);
    case RepetitionEnd::LastDay:
        return tr("Days after %1 cannot be kept.").arg(longDay(fileDays(today()).last));
    case RepetitionEnd::NoWeekday:
        return tr("Choose a weekday.");
    case RepetitionEnd::NoSense:
        return tr("The task has no day from which to repeat it.");
    case RepetitionEnd::Own:
        break;
    }
    return {};
}

void RepeatWindow::showSummary()
{
    const QList<QDate> chosen = days();
    m_ui->problem->setWarning(problemOf(entered()));
    m_repeatButton->setEnabled(!chosen.isEmpty());
    const QString number = QLocale().toString(chosen.size());
    if (chosen.isEmpty())
        m_ui->summary->setText(tr("No copies"));
    else if (chosen.size() == 1)
        m_ui->summary->setText(tr("1 copy, on %1").arg(longDay(chosen.last())));
    else
        m_ui->summary->setText(tr("%1 copies, the last on %2").arg(number, longDay(chosen.last())));
}

} // namespace oblino
