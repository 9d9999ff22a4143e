#include <core/namedfilters.h>

#include <files/defaults.h>

#include <algorithm>

namespace oblino {

namespace {

const QString settingsKey = QStringLiteral("filters");

} // namespace

// A line a filter: the name, a tab, the filter.
NamedFilters::NamedFilters(Defaults &settings)
    : m_settings(settings)
{
    const QStringList lines = settings.text(settingsKey).value_or(QString()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QString name = line.section(QLatin1Char('\t'), 0, 0);
        const std::optional<TaskFilter> filter = filterOfText(line.section(QLatin1Char('\t'), 1));
        if (!name.isEmpty() && filter && m_filters.size() < most)
            m_filters.append({name, *filter});
    }
}

bool NamedFilters::keep(const QString &name, const TaskFilter &filter)
{
    const QString shown = name.simplified();
    const auto same = std::ranges::find(m_filters, shown, &std::pair<QString, TaskFilter>::first);
    if (shown.isEmpty() || (same == m_filters.end() && m_filters.size() >= most))
        return false;
    if (same != m_filters.end())
        same->second = filter;
    else
        m_filters.append({shown, filter});
    store();
    return true;
}

void NamedFilters::remove(const QString &name)
{
    m_filters.removeIf([&name](const auto &filter) { return filter.first == name; });
    store();
}

void NamedFilters::clear()
{
    m_filters.clear();
    store();
}

void NamedFilters::store()
{
    QStringList lines;
    for (const auto &[name, filter] : m_filters)
        lines += name + QLatin1Char('\t') + filterText(filter);
    m_settings.setText(settingsKey, lines.join(QLatin1Char('\n')));
    (void)m_settings.save(); // what cannot be written says so when the program reads it
}

} // namespace oblino
