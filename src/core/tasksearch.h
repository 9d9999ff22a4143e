#pragma once

#include <core/taskplaces.h>

#include <QList>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace oblino {

/// Finds the tasks of one list that hold a term in name, description, client, team member or key; see
/// foldedText() for what counts as the same. The folded texts are kept, and a term that holds the last one is
/// looked for among what that one found. So it must be told what happens to the list, but for new tasks at
/// its end.
class TaskSearch
{
public:
    /// The places of the tasks that match, in their order; of every task where the term is empty.
    [[nodiscard]] TaskPlaces matching(const QList<task> &tasks, const QString &term);

    /// A task was changed in its place.
    void change(qsizetype place);
    void remove(qsizetype place);
    void exchange(qsizetype first, qsizetype second);
    /// The list is another one, or stands in another order.
    void clear();

private:
    [[nodiscard]] bool matches(const task &t, size_t place, const std::string &term);

    std::vector<std::string> m_folded; // a text each, of all fields; empty where it is not made yet
    std::string m_term;
    std::optional<TaskPlaces> m_found; // by that term, unless the list has changed since
};

} // namespace oblino
