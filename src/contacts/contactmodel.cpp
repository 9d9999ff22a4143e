#include <contacts/contactmodel.h>

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

} // namespace oblino
