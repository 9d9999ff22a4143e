#include "otherprogram.h"
#include "storecontacts.h"

#include <contacts/contacthistory.h>

namespace {

/// Does a random step to contacts, and to a list of them ("name|number") that is kept by hand.
void step(QRandomGenerator &random, ContactHistory &history, QStringList &rows)
{
    const auto any = [&random](qsizetype end) { return int(random.bounded(quint32(end))); };
    const int kind = rows.isEmpty() ? 0 : any(4);
    if (kind == 0) {
        history.add();
        rows += u"|"_s;
    } else if (kind == 1) {
        const QSet<int> leaving = {any(rows.size()), any(rows.size())};
        history.remove(leaving.values());
        for (auto row = rows.size() - 1; row >= 0; --row)
            if (leaving.contains(int(row)))
                rows.removeAt(row);
    } else {
        const int row = any(rows.size());
        QStringList cells = rows.at(row).split(u'|');
        cells[kind - 2] = QString::number(random.generate());
        history.setText(row, ContactColumn(kind - 2), cells.at(kind - 2));
        rows[row] = cells.join(u'|');
    }
}

QStringList rowsOf(const ContactModel &contacts)
{
    QStringList rows;
    for (int row = 0; row < contacts.rowCount(); ++row)
        rows += contacts.text(row, NameColumn) + u'|' + contacts.text(row, PhoneNoColumn);
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
            QRandomGenerator random(seed);
            QStringList rows = {u"a|"_s, u"b|"_s, u"c|"_s};
            QList<QStringList> snapshots = {rows};
            for (int i = 0; i < 40; ++i) {
                step(random, history, rows);
                snapshots += rows;
            }
            const int last = int(random.bounded(41));
            for (const int end : {0, 40, last}) {
                while (history.index() != end) {
                    history.setIndex(history.index() + (history.index() < end ? 1 : -1));
                    QCOMPARE(rowsOf(contacts), snapshots.at(history.index()));
                }
                QVERIFY(end != 0 || !store.hasChanges());
            }
            QCOMPARE(store.save(), QString());
            // In the order of their keys: a contact that came back as another one would be the last.
            const QString all =
                u"SELECT ifnull(name, '') || '|' || ifnull(phoneNo, '') FROM Clients ORDER BY id"_s;
            QCOMPARE(runElsewhere(home.privateFolder(), all), snapshots.at(last));
        }
    }
};

OBLINO_TEST(tst_contacthistory, QCoreApplication)

#include "tst_contacthistory.moc"
