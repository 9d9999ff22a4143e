#pragma once

#include <QString>

namespace oblino {

/// A request for all objects of an entity.
struct FetchRequest
{
    QString entityName;
};

/// A client.
struct Clients
{
    QString name;
    QString phoneNo;

    /// The name under which those are rescued that cannot be saved.
    static inline const QString rescueFile = QStringLiteral("clients.txt");

    [[nodiscard]] static FetchRequest fetchRequest() { return {QStringLiteral("Clients")}; }
};

/// A team member.
struct TeamMembers
{
    QString name;
    QString phoneNo;

    static inline const QString rescueFile = QStringLiteral("team members.txt");

    [[nodiscard]] static FetchRequest fetchRequest() { return {QStringLiteral("TeamMembers")}; }
};

} // namespace oblino
