#pragma once

#include <contacts/contactmodel.h>

#include <QTest>

namespace oblino {

/// Adds contacts to those in the store on disk.
template<typename Contact>
void storeContacts(const QString &folder, const QList<Contact> &contacts)
{
    const auto container = makeContactContainer(folder);
    QCOMPARE(container->loadPersistentStores().error, QString());
    EntityModel &model = *container->viewContext()->objects(Contact::fetchRequest().entityName);
    for (const Contact &contact : contacts) {
        const int row = model.rowCount();
        QVERIFY(model.insertRow(row) && model.setData(model.index(row, NameColumn), contact.name) &&
                model.setData(model.index(row, PhoneNoColumn), contact.phoneNo));
    }
    QCOMPARE(container->viewContext()->save(), QString());
}

} // namespace oblino
