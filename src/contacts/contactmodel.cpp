#include <contacts/contactmodel.h>

#include <base/trace.h>

#include <QStandardPaths>

namespace oblino {

QString contactsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

std::unique_ptr<PersistentContainer> makeContactContainer(const QString &folder)
{
    const QStringList attributes = {QStringLiteral("name"), QStringLiteral("phoneNo")};
    const QList<Entity> entities = {{Clients::fetchRequest().entityName, attributes},
                                    {TeamMembers::fetchRequest().entityName, attributes}};
    return std::make_unique<PersistentContainer>(QStringLiteral("Model"), entities, folder);
}

StoreLoading loadTraced(PersistentContainer &container)
{
    StoreLoading loading = container.loadPersistentStores();
    if (loading.error.isEmpty())
        trace("---Persistent Store---:", loading.location, loading.type);
    else
        trace("Unable to Add Persistent Store", loading.error);
    return loading;
}

} // namespace oblino
