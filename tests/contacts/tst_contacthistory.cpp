#include "otherprogram.h"
#include "storecontacts.h"

#include <contacts/contacthistory.h>

namespace {

using Rows = QStringList; // as in "1 Ann 12"; the key is empty for a contact that is not on disk

/// What a list of contacts is by hand, beside the one of the program.
struct ByHand
{
    QRandomGenerator random;
    Rows rows;

    int any(qsizetype end) { return int(random.bounded(quint32(end))); }

    /// Does one step to both.
    void step(ContactHistory &history)
    {
        const int kind = rows.isEmpty() ? 0 : any(4);
        if (kind == 0) {
            history.add();
            rows += u"||"_s;
        } else if (kind == 1) {
            QSet<int> leaving;
            for (int i = any(3); i >= 0; --i)
                leaving += any(rows.size());
            history.remove(leaving.values());
            for (int row = int(rows.size()) - 1; row >= 0; --row) {
                if (leaving.contains(row))
                    rows.removeAt(row);
            }
        } else {
            const int row = any(rows.size());
            const QString text = QString::number(random.generate());
            history.setText(row, ContactColumn(kind - 2), text);
            QStringList cells = rows.at(row).split(u'|');
            cells[kind - 1] = text;
            rows[row] = cells.join(u'|');
        }
    }
};

Rows textsOf(const ContactModel &contacts, const Rows &like)
{
    Rows rows;
    for (int row = 0; row < contacts.rowCount(); ++row)
        rows += like.value(row).section(u'|', 0, 0) + u'|' + contacts.text(row, NameColumn) + u'|' +
                contacts.text(row, PhoneNoColumn);
    return rows;
}

} // namespace

class tst_contacthistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepIsUndoneAndRedoneDownToTheFile()
    {
        for (quint32 seed = 1; seed <= 20; ++seed) {
            const TemporaryHome home;
            storeContacts<Clients>(home.privateFolder(), {{u"a"_s, {}}, {u"b"_s, {}}, {u"c"_s, {}}});
            ContactStore store(home.privateFolder());
            QCOMPARE(store.loadPersistentStores().error, QString());
            ContactModel &contacts = *store.objects(Clients::fetchRequest());
            ContactHistory history;
            history.setContacts(contacts);
            ByHand hand = {QRandomGenerator(seed), {u"1|a|"_s, u"2|b|"_s, u"3|c|"_s}};
            QList<Rows> snapshots = {hand.rows};
            for (int i = 0; i < 40; ++i) {
                hand.step(history);
                snapshots += hand.rows;
            }
            QCOMPARE(history.count(), 40);
            const auto walkTo = [&](int end) {
                for (int at = history.index();; at += at < end ? 1 : -1) {
                    history.setIndex(at);
                    QCOMPARE(textsOf(contacts, snapshots.at(at)), snapshots.at(at));
                    if (at == end)
                        break;
                }
            };
            walkTo(0);
            QVERIFY(!store.hasChanges());
            walkTo(40);
            const int last = hand.any(41);
            walkTo(last);
            QCOMPARE(store.save(), QString());
            const Rows onDisk = runElsewhere(
                home.privateFolder(), u"SELECT iif(id < 4, id, '') || '|' || coalesce(name, '') || '|' || "
                                      "coalesce(phoneNo, '') FROM Clients ORDER BY id"_s);
            QCOMPARE(onDisk, snapshots.at(last)); // with the identity of those that had gone and come back
        }
    }
};

OBLINO_TEST(tst_contacthistory, QCoreApplication)

#include "tst_contacthistory.moc"
