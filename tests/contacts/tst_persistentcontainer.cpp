#include "otherprogram.h"
#include "storecontacts.h"

#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <csignal>
#include <functional>

#include <sys/fsuid.h>
#include <sys/resource.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A store with clients of these names, and a container that has not opened it yet.
struct Store : Place
{
    const QString place = folder.filePath(u"private"_s);
    const QString file = place + u"/Model.sqlite"_s;
    PersistentContainer container{place};

    explicit Store(const QStringList &names = {})
    {
        QList<Clients> clients;
        for (const QString &name : names)
            clients += {.name = name, .phoneNo = {}};
        storeContacts(place, clients);
    }

    static ContactModel &clients(PersistentContainer &container)
    {
        if (!container.viewContext() && !container.loadPersistentStores().error.isEmpty())
            qFatal("not opened");
        return *container.viewContext()->objects(Clients::fetchRequest());
    }
    ContactModel &clients() { return clients(container); }
    void rename(int row, const QString &name)
    {
        QVERIFY(clients().setData(clients().index(row, NameColumn), name));
    }
    [[nodiscard]] QString save() const { return container.viewContext()->save(); }

    [[nodiscard]] QStringList names() const
    {
        return OtherProgram(place).run(u"SELECT name FROM Clients ORDER BY id"_s);
    }
};

using Act = std::function<void(const Store &, const OtherProgram &)>;

} // namespace

class tst_persistentcontainer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatIsPendingFromTheStoreUntilItIsSaved()
    {
        Store store({u"z"_s, u"a"_s, u"m"_s});
        QVERIFY(store.clients().removeRow(1));
        store.rename(0, u"y"_s);
        addContact(store.clients(), u"b"_s);
        QCOMPARE(store.names(), (QStringList{u"z"_s, u"a"_s, u"m"_s}));
        QCOMPARE(store.save(), QString());
        QCOMPARE(store.save(), QString()); // which adds nothing a second time
        QCOMPARE(store.names(), (QStringList{u"y"_s, u"m"_s, u"b"_s}));
        QCOMPARE(statusOf(store.file).st_mode & 0777U, 0600U);
        QCOMPARE(statusOf(store.place).st_mode & 0777U, 0700U);
    }

    void keepsEveryText()
    {
        const QStringList texts = {u"'; DROP TABLE Clients; --"_s, u"a\0b"_s, u"😀\n|^\"%1?"_s,
                                   QString(1'000'000, u'x'), QString()};
        QCOMPARE(Store(texts).names(), texts);
    }

    void deletesEveryContactOfAnEntityAtOnce()
    {
        Store store({u"secret name"_s, u"b"_s});
        addContact(store.clients(), u"pending"_s);
        QCOMPARE(store.container.viewContext()->batchDelete(Clients::fetchRequest()), QString());
        QVERIFY(!contentOf(store.file).contains("secret name"));
        QCOMPARE(store.save(), QString());
        QCOMPARE(store.names(), QStringList());
    }

    void givesNoContactTheKeyOfADeletedOne()
    {
        Store store({u"a"_s, u"b"_s});
        QCOMPARE(store.clients().rowCount(), 2);
        PersistentContainer other(store.place);
        QVERIFY(Store::clients(other).removeRow(1));
        addContact(Store::clients(other), u"new"_s);
        QCOMPARE(other.viewContext()->save(), QString());
        store.rename(1, u"edited after it was deleted"_s);
        QCOMPARE(store.save(), QString());
        QCOMPARE(store.names(), (QStringList{u"a"_s, u"new"_s}));
    }

    void leavesAloneWhatItCannotUse_data()
    {
        const Table<QString, Act> row;
        const auto sql = [](const QString &statement) -> Act {
            return [=](const Store &, const OtherProgram &other) {
                QCOMPARE(other.run(statement), QStringList());
            };
        };
        const auto bytes = [](const std::function<QByteArray(QByteArray)> &changed) -> Act {
            return [=](const Store &store, auto &) { put(store.file, changed(contentOf(store.file))); };
        };
        row("not a database", u"not a database"_s, bytes([](const QByteArray &) { return "Not at all"; }));
        row("damaged inside", u"damaged"_s,
            bytes([](QByteArray all) { return all.replace(4096, 4096, QByteArray(4096, '\xff')); }));
        row("a newer version", u"newer version"_s, sql(u"PRAGMA user_version = 2"_s));
        row("another program's", u"something else"_s, sql(u"PRAGMA user_version = 0"_s));
        row("a table without the attribute", u"phoneNo"_s, sql(u"ALTER TABLE Clients DROP COLUMN phoneNo"_s));
        row("locked by another program", u"locked"_s, sql(u"BEGIN EXCLUSIVE"_s));
        row("a folder", u"not a regular file"_s, [](const Store &store, auto &) {
            QVERIFY(QFile::remove(store.file) && QDir().mkdir(store.file));
        });
    }
    void leavesAloneWhatItCannotUse()
    {
        const auto [why, damage] = Table<QString, Act>::cells();
        Store store({u"a"_s});
        const OtherProgram other(store.place);
        damage(store, other);
        const QByteArray before = contentOf(store.file);
        const QString error = store.container.loadPersistentStores().error;
        QVERIFY2(error.startsWith(store.file) && error.contains(why), qPrintable(error));
        QVERIFY(!store.container.viewContext());
        QCOMPARE(contentOf(store.file), before);
    }

    void doesNotOpenAFileThatItMayOnlyRead()
    {
        Store store;
        QCOMPARE(::chmod(qPrintable(store.file), 0444), 0);
        QCOMPARE(::chmod(qPrintable(store.place), 0755), 0);
        QCOMPARE(::chmod(qPrintable(store.folder.path()), 0755), 0);
        const int user = ::setfsuid(nobody); // has no effect where the user is not root, and no need
        const QString error = store.container.loadPersistentStores().error;
        ::setfsuid(static_cast<uid_t>(user));
        QVERIFY2(error.contains(u"readonly"_s), qPrintable(error));
    }

    void keepsPendingWhatTheDiskHasNoRoomFor()
    {
        Store store({u"a"_s, u"b"_s});
        const QString large(100'000, u'x');
        store.rename(0, u"edited"_s);
        QVERIFY(store.clients().removeRow(1));
        addContact(store.clients(), large);

        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit full = {40'000, before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &full);
        const QString error = store.save();
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);

        QVERIFY(!error.isEmpty());
        QCOMPARE(store.names(), (QStringList{u"a"_s, u"b"_s}));
        QCOMPARE(store.save(), QString());
        QCOMPARE(store.names(), (QStringList{u"edited"_s, large}));
    }
};

OBLINO_TEST(tst_persistentcontainer, QCoreApplication)

#include "tst_persistentcontainer.moc"
