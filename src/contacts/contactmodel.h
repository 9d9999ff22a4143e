#pragma once

#include <contacts/persistentcontainer.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

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

/// The columns of the contacts' objects.
enum ContactColumn { NameColumn, PhoneNoColumn };

/// Where the contacts of this user lie.
[[nodiscard]] QString contactsFolder();

/// A container "Model" for both entities, not loaded yet.
[[nodiscard]] std::unique_ptr<PersistentContainer> makeContactContainer(const QString &folder);

/// Loads the container of a window, and traces what came of it in one line.
[[nodiscard]] StoreLoading loadTraced(PersistentContainer &container);

/// All objects that a request asks for, in the order of the store, edits that are pending included. Nothing
/// where there is no context.
template<typename Contact>
[[nodiscard]] QList<Contact> fetch(const ManagedObjectContext *context)
{
    QList<Contact> contacts;
    const EntityModel *objects = context ? context->objects(Contact::fetchRequest().entityName) : nullptr;
    for (int row = 0; objects && row < objects->rowCount(); ++row) {
        const QStringList values = objects->object(row);
        contacts += Contact{.name = values.at(NameColumn), .phoneNo = values.at(PhoneNoColumn)};
    }
    return contacts;
}

/// The names of fetch<Contact>().
template<typename Contact>
[[nodiscard]] QStringList fetchNames(const ManagedObjectContext *context)
{
    QStringList names;
    for (const Contact &contact : fetch<Contact>(context))
        names += contact.name;
    return names;
}

} // namespace oblino
