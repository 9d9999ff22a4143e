#include <core/taskfilter.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace oblino {

namespace {

const std::array<QString, 4> rangeNames = {QStringLiteral("any"), QStringLiteral("today"),
                                           QStringLiteral("week"), QStringLiteral("from-to")};

bool isSame(const QString &wanted, const QString &name)
{
    return wanted.isEmpty() || wanted.compare(name, Qt::CaseInsensitive) == 0;
}

QString textOf(QDate day)
{
    return day.isValid() ? day.toString(Qt::ISODate) : QString();
}

std::optional<qint64> number(const QJsonValue &value)
{
    return value.isDouble() ? std::optional<qint64>(value.toInteger()) : std::nullopt;
}

} // namespace

TaskSieve::TaskSieve(const TaskFilter &filter, QDate today, Qt::DayOfWeek firstDay)
    : m_filter(filter)
{
    constexpr int daysOfWeek = 7;
    if (filter.range == TaskFilter::Range::Today) {
        m_from = m_to = today;
    } else if (filter.range == TaskFilter::Range::ThisWeek) {
        m_from = today.addDays(-((today.dayOfWeek() - firstDay + daysOfWeek) % daysOfWeek));
        m_to = m_from.addDays(daysOfWeek - 1);
    } else if (filter.range == TaskFilter::Range::FromTo) {
        m_from = filter.from;
        m_to = filter.to;
    }
}

bool TaskSieve::admits(const task &t) const
{
    if ((m_filter.status && *m_filter.status != t.status) ||
        (m_filter.priority && *m_filter.priority != t.priority))
        return false;
    if (m_from.isValid() || m_to.isValid()) {
        const QDate first = t.date.date();
        const QDate last = std::max(first, t.due.date());
        if ((m_from.isValid() && last < m_from) || (m_to.isValid() && first > m_to))
            return false;
    }
    return isSame(m_filter.client, t.client) && isSame(m_filter.teamMember, t.teamMember);
}

QString filterText(const TaskFilter &filter)
{
    QJsonObject object{{QStringLiteral("client"), filter.client},
                       {QStringLiteral("teamMember"), filter.teamMember},
                       {QStringLiteral("range"), rangeNames[static_cast<size_t>(filter.range)]},
                       {QStringLiteral("from"), textOf(filter.from)},
                       {QStringLiteral("to"), textOf(filter.to)}};
    if (filter.status)
        object.insert(QStringLiteral("status"), *filter.status);
    if (filter.priority)
        object.insert(QStringLiteral("priority"), *filter.priority);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<TaskFilter> filterOfText(const QString &text)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    const auto *const range = std::ranges::find(rangeNames, object.value(QLatin1String("range")).toString());
    if (range == rangeNames.end())
        return {};
    const TaskFilter filter = {
        .client = object.value(QLatin1String("client")).toString(),
        .teamMember = object.value(QLatin1String("teamMember")).toString(),
        .status = number(object.value(QLatin1String("status"))),
        .priority = number(object.value(QLatin1String("priority"))),
        .range = static_cast<TaskFilter::Range>(range - rangeNames.begin()),
        .from = QDate::fromString(object.value(QLatin1String("from")).toString(), Qt::ISODate),
        .to = QDate::fromString(object.value(QLatin1String("to")).toString(), Qt::ISODate)};
    return filterText(filter) == text ? std::optional(filter) : std::nullopt;
}

} // namespace oblino
