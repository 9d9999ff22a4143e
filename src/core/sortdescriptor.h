#pragma once

#include <QString>

#include <optional>

namespace oblino {

/// By which column a list is sorted, and which way.
struct SortDescriptor
{
    std::optional<QString> key; ///< one of CellIdentifiers; anything else, or none, sorts nothing
    bool ascending = true;

    friend bool operator==(const SortDescriptor &, const SortDescriptor &) = default;
};

void appendTrace(QByteArray &line, const SortDescriptor &descriptor);

} // namespace oblino
