#include <contacts/persistentcontainer.h>
#include <contacts/sqlcalls.h>
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

/// A folder with the store "Box" in it.
struct Store : Place
{
    const QString file = folder.filePath(u"private/Box.sqlite"_s);
    PersistentContainer container = another();

    /// With these people in it.
    explicit Store(const QStringList &names = {})
    {
        PersistentContainer filled = another();
        QCOMPARE(filled.loadPersistentStores().error, QString());
        for (const QString &name : names)
            add(filled, name);
        QCOMPARE(filled.viewContext()->save(), QString());
    }

    [[nodiscard]] PersistentContainer another() const
    {
        return {u"Box"_s, {{u"People"_s, {u"name"_s, u"note"_s}}}, folder.filePath(u"private"_s)};
    }

    static EntityModel &people(const PersistentContainer &container)
    {
        return *container.viewContext()->objects(u"People"_s);
    }
    static void set(const PersistentContainer &container, int row, const QString &name)
    {
        QVERIFY(people(container).setData(people(container).index(row, 0), name));
    }
    static void add(const PersistentContainer &container, const QString &name)
    {
        const int row = people(container).rowCount();
        QVERIFY(people(container).insertRow(row));
        set(container, row, name);
    }

    /// The names that are in the store on disk.
    [[nodiscard]] QStringList names() const
    {
        PersistentContainer found = another();
        if (const QString error = found.loadPersistentStores().error; !error.isEmpty())
            return {error};
        QStringList names;
        for (int row = 0; row < people(found).rowCount(); ++row)
            names += people(found).object(row).first();
        return names;
    }

    /// Runs a statement on a connection of another program, which stays open until the test function ends.
    void intrude(const QString &statement) const
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"intruder"_s);
        database.setDatabaseName(file);
        QVERIFY(database.open());
        QCOMPARE(SqlCall(database, statement).error(), QString());
    }
};

using Act = std::function<void(const Store &)>;

} // namespace

class tst_persistentcontainer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    static void cleanup() { QSqlDatabase::removeDatabase(u"intruder"_s); }

    void keepsWhatIsPendingFromTheStoreUntilItIsSaved()
    {
        Store store({u"z"_s, u"a"_s, u"m"_s});
        const PersistentContainer &container = store.container;
        QCOMPARE(store.container.loadPersistentStores().location, store.file);
        QVERIFY(Store::people(container).removeRow(1));
        Store::set(container, 0, u"y"_s);
        Store::add(container, u"b"_s);
        QCOMPARE(store.names(), (QStringList{u"z"_s, u"a"_s, u"m"_s}));
        QCOMPARE(container.viewContext()->save(), QString());
        QCOMPARE(container.viewContext()->save(), QString()); // which adds nothing a second time
        QCOMPARE(store.names(), (QStringList{u"y"_s, u"m"_s, u"b"_s}));
        QCOMPARE(statusOf(store.file).st_mode & 0777U, 0600U);
        QCOMPARE(statusOf(store.folder.filePath(u"private"_s)).st_mode & 0777U, 0700U);
    }

    void keepsEveryText()
    {
        const QStringList texts = {u"'; DROP TABLE People; --"_s, u"a\0b"_s, u"😀\n|^\"%1?"_s,
                                   QString(1'000'000, u'x'), QString()};
        QCOMPARE(Store(texts).names(), texts);
    }

    void deletesEveryObjectOfAnEntityAtOnce()
    {
        Store store({u"secret name"_s, u"b"_s});
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        Store::add(store.container, u"pending"_s);
        QCOMPARE(store.container.viewContext()->batchDelete(u"People"_s), QString());
        QVERIFY(!contentOf(store.file).contains("secret name"));
        QCOMPARE(store.container.viewContext()->save(), QString());
        QCOMPARE(store.names(), QStringList());
    }

    void givesNoObjectTheKeyOfADeletedOne()
    {
        Store store({u"a"_s, u"b"_s});
        PersistentContainer other = store.another();
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        QCOMPARE(other.loadPersistentStores().error, QString());
        QVERIFY(Store::people(other).removeRow(1));
        Store::add(other, u"new"_s);
        QCOMPARE(other.viewContext()->save(), QString());
        Store::set(store.container, 1, u"edited after it was deleted"_s);
        QCOMPARE(store.container.viewContext()->save(), QString());
        QCOMPARE(store.names(), (QStringList{u"a"_s, u"new"_s}));
    }

    void leavesAloneWhatItCannotUse_data()
    {
        const Table<QString, Act> row;
        const auto sql = [](const QString &statement) -> Act {
            return [statement](const Store &store) { store.intrude(statement); };
        };
        const auto change = [](const std::function<QByteArray(QByteArray)> &changed) -> Act {
            return [changed](const Store &store) { put(store.file, changed(contentOf(store.file))); };
        };
        row("not a database", u"not a database"_s, change([](const QByteArray &) { return "Not at all"; }));
        row("damaged inside", u"damaged"_s,
            change([](QByteArray bytes) { return bytes.replace(4096, 4096, QByteArray(4096, '\xff')); }));
        row("a newer version", u"newer version"_s, sql(u"PRAGMA user_version = 2"_s));
        row("another program's", u"something else"_s, sql(u"PRAGMA user_version = 0"_s));
        row("a table without the attribute", u"note"_s, sql(u"ALTER TABLE People DROP COLUMN note"_s));
        row("locked by another program", u"locked"_s, sql(u"BEGIN EXCLUSIVE"_s));
        row("a folder", u"not a regular file"_s,
            [](const Store &store) { QVERIFY(QFile::remove(store.file) && QDir().mkdir(store.file)); });
    }
    void leavesAloneWhatItCannotUse()
    {
        const auto [why, damage] = Table<QString, Act>::cells();
        Store store({u"a"_s});
        damage(store);
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
        QCOMPARE(::chmod(qPrintable(store.folder.filePath(u"private"_s)), 0755), 0);
        QCOMPARE(::chmod(qPrintable(store.folder.path()), 0755), 0);
        const int user = ::setfsuid(nobody); // has no effect where the user is not root, and no need
        const QString error = store.container.loadPersistentStores().error;
        ::setfsuid(static_cast<uid_t>(user));
        QVERIFY2(error.contains(u"readonly"_s), qPrintable(error));
    }

    void keepsPendingWhatCouldNotBeSaved()
    {
        Store store({u"a"_s, u"b"_s});
        const QString large(100'000, u'x');
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        Store::set(store.container, 0, u"edited"_s);
        QVERIFY(Store::people(store.container).removeRow(1));
        Store::add(store.container, large);

        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit full = {40'000, before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &full);
        const QString error = store.container.viewContext()->save();
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);

        QVERIFY(!error.isEmpty());
        QCOMPARE(store.names(), (QStringList{u"a"_s, u"b"_s}));
        QCOMPARE(store.container.viewContext()->save(), QString());
        QCOMPARE(store.names(), (QStringList{u"edited"_s, large}));
    }
};

OBLINO_TEST(tst_persistentcontainer, QCoreApplication)

#include "tst_persistentcontainer.moc"
