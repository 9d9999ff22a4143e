#pragma once

#include <contacts/contactstore.h>
#include <support/test.h>

namespace oblino {

inline void addContact(ContactModel &model, const QString &name, const QString &phoneNo = {})
{
    const int row = model.rowCount();
    QVERIFY(model.insertRow(row) && model.setData(model.index(row, NameColumn), name) &&
            model.setData(model.index(row, PhoneNoColumn), phoneNo));
}

/// Adds contacts to those in the store on disk.
template<typename Contact>
void storeContacts(const QString &folder, const QList<Contact> &contacts)
{
    ContactStore container(folder);
    QCOMPARE(container.loadPersistentStores().error, QString());
    for (const Contact &contact : contacts)
        addContact(*container.viewContext()->objects(Contact::fetchRequest()), contact.name, contact.phoneNo);
    QCOMPARE(container.viewContext()->save(), QString());
}

} // namespace oblino
