#pragma once

#include <QString>

namespace oblino {

/// How the user likes to see the table.
struct TableLook
{
    QString columns; ///< see headerState(); empty: as at the first start
    int view = 0;    ///< its index
    QString order;   ///< the key of a sort descriptor; empty: by date
    bool isDescending = false;

    friend bool operator==(const TableLook &, const TableLook &) = default;
};

} // namespace oblino
