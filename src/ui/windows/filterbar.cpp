#include <ui/windows/filterbar.h>

#include <base/clock.h>
#include <controls/icons.h>
#include <core/filedays.h>
#include <ui_filterbar.h>

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

void setNamesIn(QComboBox *box, const QString &any, QStringList names)
{
    const QString chosen = box->currentData().toString();
    if (!chosen.isEmpty() && !names.contains(chosen))
        names.prepend(chosen);
    box->clear();
    box->addItem(any, QString());
    for (const QString &name : std::as_const(names))
        box->addItem(name, name);
    box->setCurrentIndex(std::max(box->findData(chosen), 0));
}

// Chooses an item, which is added where there is none for the value.
void choose(QComboBox *box, const QVariant &value)
{
    if (box->findData(value) < 0)
        box->addItem(value.toString(), value);
    box->setCurrentIndex(box->findData(value));
}

std::optional<qint64> numberIn(const QComboBox *box)
{
    const QVariant value = box->currentData();
    return value.isValid() ? std::optional(value.toLongLong()) : std::nullopt;
}

void chooseNumber(QComboBox *box, std::optional<qint64> number)
{
    if (number)
        choose(box, *number);
    else
        box->setCurrentIndex(0);
}

} // namespace

FilterBar::FilterBar(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::FilterBar>())
{
    m_ui->setupUi(this);
    setNames({}, {});
    const auto fill = [](QComboBox *box, const QString &any, const QStringList &texts) {
        box->addItem(any);
        for (const QString &text : texts)
            box->addItem(text, qint64(box->count() - 1));
    };
    fill(m_ui->filterStatus, tr("Any status"), {QStringLiteral("Open"), QStringLiteral("Closed")});
    fill(m_ui->filterPriority, tr("Any priority"),
         {QStringLiteral("Low"), QStringLiteral("Medium"), QStringLiteral("High")});
    m_ui->filterRange->addItems({tr("Any day"), tr("Today"), tr("This week"), tr("From – to…")});
    const FileDays days = fileDays(today());
    for (DateField *field : {m_ui->filterFrom, m_ui->filterTo}) {
        field->setDayRange(days.first, days.last);
        connect(field, &DateField::dateChosen, this, &FilterBar::tell);
    }
    m_ui->filterFrom->lineEdit()->setAccessibleName(tr("First day of the filter"));
    m_ui->filterTo->lineEdit()->setAccessibleName(tr("Last day of the filter"));
    m_ui->filterFrom->setDate(today());
    m_ui->filterTo->setDate(today().addDays(6)); // a week
    for (QComboBox *box : findChildren<QComboBox *>()) {
        constexpr int leastLength = 10; // characters, beyond which a text is elided
        box->setMinimumContentsLength(leastLength);
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(box, &QComboBox::currentIndexChanged, this, &FilterBar::tell);
    }
    m_ui->dropFilter->setIcon(themedIcon(QStringLiteral("clear")));
    m_ui->filterDays->hide();
    connect(m_ui->keepFilter, &QToolButton::clicked, this, &FilterBar::keepRequested);
    connect(m_ui->dropFilter, &QToolButton::clicked, this, &FilterBar::dropped);
    setFocusProxy(m_ui->filterClient);
}

FilterBar::~FilterBar() = default;

void FilterBar::setNames(const QStringList &clients, const QStringList &teamMembers)
{
    const bool wasSetting = std::exchange(m_isSetting, true);
    setNamesIn(m_ui->filterClient, tr("Any client"), clients);
    setNamesIn(m_ui->filterTeamMember, tr("Any member"), teamMembers);
    m_isSetting = wasSetting;
}

void FilterBar::setFilter(const TaskFilter &filter)
{
    const bool wasSetting = std::exchange(m_isSetting, true);
    choose(m_ui->filterClient, filter.client);
    choose(m_ui->filterTeamMember, filter.teamMember);
    chooseNumber(m_ui->filterStatus, filter.status);
    chooseNumber(m_ui->filterPriority, filter.priority);
    m_ui->filterRange->setCurrentIndex(static_cast<int>(filter.range));
    if (filter.from.isValid())
        m_ui->filterFrom->setDate(filter.from);
    if (filter.to.isValid())
        m_ui->filterTo->setDate(filter.to);
    m_isSetting = wasSetting;
    m_ui->filterDays->setVisible(filter.range == TaskFilter::Range::FromTo);
}

TaskFilter FilterBar::filter() const
{
    TaskFilter filter{.client = m_ui->filterClient->currentData().toString(),
                      .teamMember = m_ui->filterTeamMember->currentData().toString(),
                      .status = numberIn(m_ui->filterStatus),
                      .priority = numberIn(m_ui->filterPriority),
                      .range =
                          static_cast<TaskFilter::Range>(std::max(m_ui->filterRange->currentIndex(), 0))};
    if (filter.range == TaskFilter::Range::FromTo)
        std::tie(filter.from, filter.to) = std::minmax(m_ui->filterFrom->date(), m_ui->filterTo->date());
    return filter;
}

void FilterBar::setCounts(qsizetype shown, qsizetype all)
{
    const QLocale locale;
    m_ui->filterCounts->setText(tr("%1 of %2").arg(locale.toString(shown), locale.toString(all)));
}

// Of a list that is open, the key closes that; it does not come here then, as a shortcut would.
void FilterBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT dropped();
    else
        QWidget::keyPressEvent(event);
}

void FilterBar::tell()
{
    if (m_isSetting)
        return;
    m_ui->filterDays->setVisible(filter().range == TaskFilter::Range::FromTo);
    Q_EMIT filterChanged();
}

} // namespace oblino
