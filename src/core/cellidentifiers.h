#pragma once

#include <QString>

namespace oblino {

/// The identifiers of the task table's columns. They are also the keys of sort descriptors.
struct CellIdentifiers
{
    static inline const QString DateCell = QStringLiteral("DateCellID");
    static inline const QString StartTime = QStringLiteral("StartTimeID");
    static inline const QString EndTime = QStringLiteral("EndTimeID");
    static inline const QString NameCell = QStringLiteral("NameCellID");
    static inline const QString ClientCell = QStringLiteral("ClientCellID");
    static inline const QString TeamMemberCell = QStringLiteral("TeamMemberCellID");
    static inline const QString DescCell = QStringLiteral("DescCellID");
    static inline const QString StatusCell = QStringLiteral("StatusCellID");
    static inline const QString PriorityCell = QStringLiteral("PriorityCellID");
    static inline const QString DueCell = QStringLiteral("DueCellID");
    static inline const QString KeyCell = QStringLiteral("KeyCellID");
};

} // namespace oblino
