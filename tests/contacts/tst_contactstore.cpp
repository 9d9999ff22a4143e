#include "otherprogram.h"
#include "storecontacts.h"

#include <support/place.h>
#include <support/test.h>
#include <support/unprivileged.h>

#include <csignal>

#include <sys/fsuid.h>
#include <sys/resource.h>

namespace {

/// A store on disk with clients of these names.
struct Disk : Place
{
    const QString place = folder.filePath(u"private"_s);
    const QString file = place + u"/Model.sqlite"_s;

    explicit Disk(const QStringList &names)
    {
        QList<Clients> clients;
        for (const QString &name : names)
            clients += {.name = name, .phoneNo = {}};
        storeContacts(place, clients);
    }

    [[nodiscard]] QStringList names() const
    {
        return runElsewhere(place, u"SELECT name FROM Clients ORDER BY id"_s);
    }
};

/// That store as a window has it open.
struct Opened : ContactStore
{
    explicit Opened(const Disk &disk)
        : ContactStore(disk.place)
    {
        if (const QString error = loadPersistentStores().error; !error.isEmpty())
            qFatal("%s", qPrintable(error));
    }
    ContactModel &clients = *objects(Clients::fetchRequest());
    void rename(int row, const QString &name) const { clients.setData(clients.index(row, NameColumn), name); }
};

using Damage = std::function<void(const Disk &)>;

} // namespace

class tst_contactstore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatIsPendingUntilItIsSaved()
    {
        const Disk disk({u"z"_s, u"a"_s, u"m"_s});
        Opened store(disk);
        const QString large(100'000, u'x');
        QVERIFY(store.clients.removeRow(1));
        store.rename(0, u"y"_s);
        addContact(store.clients, large);

        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit full = {40'000, before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &full);
        const QString error = store.save();
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);

        QVERIFY(!error.isEmpty());
        QCOMPARE(disk.names(), (QStringList{u"z"_s, u"a"_s, u"m"_s}));
        QCOMPARE(store.save(), QString());
        QCOMPARE(store.save(), QString()); // which adds nothing a second time
        QCOMPARE(disk.names(), (QStringList{u"y"_s, u"m"_s, large}));
        QCOMPARE(statusOf(disk.file).st_mode & 0777U, 0600U);
        QCOMPARE(statusOf(disk.place).st_mode & 0777U, 0700U);
    }

    void keepsEveryText()
    {
        const QStringList texts = {u"'; DROP TABLE Clients; --"_s, u"a\0b"_s, u"😀\n|^\"%1?"_s,
                                   QString(1'000'000, u'x'), QString()};
        QCOMPARE(Disk(texts).names(), texts);
    }

    void givesNoContactTheKeyOfADeletedOne()
    {
        const Disk disk({u"a"_s, u"b"_s});
        Opened store(disk);
        Opened other(disk);
        QVERIFY(other.clients.removeRow(1));
        addContact(other.clients, u"new"_s);
        QCOMPARE(other.save(), QString());
        store.rename(1, u"edited after it was deleted"_s);
        QCOMPARE(store.save(), QString());
        QCOMPARE(disk.names(), (QStringList{u"a"_s, u"new"_s}));
    }

    void leavesAloneWhatItCannotUse_data()
    {
        const Table<QString, Damage> row;
        const auto sql = [](const QString &statement) -> Damage {
            return [=](const Disk &disk) { QCOMPARE(runElsewhere(disk.place, statement), QStringList()); };
        };
        row("not a database", u"not a database"_s, [](const Disk &disk) { put(disk.file, "Not at all"); });
        row("damaged inside", u"damaged"_s, [](const Disk &disk) {
            put(disk.file, contentOf(disk.file).replace(4096, 4096, QByteArray(4096, '\xff')));
        });
        row("a newer version", u"newer version"_s, sql(u"PRAGMA user_version = 2"_s));
        row("a table without the attribute", u"phoneNo"_s, sql(u"ALTER TABLE Clients DROP COLUMN phoneNo"_s));
        row("locked by another program", u"locked"_s, sql(u"BEGIN EXCLUSIVE"_s));
        row("a folder", u"Is a directory"_s,
            [](const Disk &disk) { QVERIFY(QFile::remove(disk.file) && QDir().mkdir(disk.file)); });
        row("read-only", u"readonly"_s, [](const Disk &disk) {
            for (const auto &[path, mode] :
                 {std::pair(disk.file, 0444), {disk.place, 0755}, {disk.folder.path(), 0755}})
                QCOMPARE(::chmod(qPrintable(path), static_cast<mode_t>(mode)), 0);
            ::setfsuid(nobody); // has no effect where the user is not root, and no need
        });
    }
    void leavesAloneWhatItCannotUse()
    {
        const auto [why, damage] = Table<QString, Damage>::cells();
        const Disk disk({u"a"_s});
        const auto root = qScopeGuard([] { ::setfsuid(::geteuid()); });
        damage(disk);
        const QByteArray before = contentOf(disk.file);
        ContactStore store(disk.place);
        const QString error = store.loadPersistentStores().error;
        QVERIFY2(error.startsWith(disk.file) && error.contains(why), qPrintable(error));
        QVERIFY(!store.viewContext());
        QCOMPARE(contentOf(disk.file), before);
    }
};

OBLINO_TEST(tst_contactstore, QCoreApplication)

#include "tst_contactstore.moc"
