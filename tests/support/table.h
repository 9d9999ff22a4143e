#pragma once

#include <QTest>

#include <tuple>

namespace oblino {

/// A data table of a test function: made first in its data function, then called once for each row.
template<typename... Cells>
struct Table
{
    Table() { QTest::addColumn<std::tuple<Cells...>>("cells"); }

    void operator()(const char *name, const Cells &...cells) const
    {
        QTest::newRow(name) << std::tuple<Cells...>(cells...);
    }

    /// The cells of the row that is being tested.
    static std::tuple<Cells...> cells()
    {
        QFETCH(std::tuple<Cells...>, cells);
        return cells;
    }
};

} // namespace oblino
