#pragma once

#include <core/taskfilter.h>

#include <QList>
#include <QString>

#include <utility>

namespace oblino {

class Defaults;

/// Filters that the user has kept under names of their own, in the settings. They hold names of clients and
/// team members, so they go with those.
class NamedFilters
{
public:
    static constexpr int most = 50;

    explicit NamedFilters(Defaults &settings);

    [[nodiscard]] const QList<std::pair<QString, TaskFilter>> &all() const { return m_filters; }
    /// Keeps a filter, in place of one that has the name already. @return false where there are too many
    bool keep(const QString &name, const TaskFilter &filter);
    void remove(const QString &name);
    void clear();

private:
    void store();

    Defaults &m_settings;
    QList<std::pair<QString, TaskFilter>> m_filters;
};

} // namespace oblino
