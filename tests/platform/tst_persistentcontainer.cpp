#include <platform/openfile.h>
#include <platform/persistentcontainer.h>
#include <platform/sqlcalls.h>
#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>

#include <QTest>

#include <csignal>
#include <functional>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QList<Entity> twoEntities = {{u"People"_s, {u"name"_s, u"note"_s}}, {u"Things"_s, {u"name"_s}}};

/// A folder with the store "Box" in it.
struct Store : Place
{
    const QString file = folder.filePath(u"private/Box.sqlite"_s);
    PersistentContainer container = another();

    [[nodiscard]] PersistentContainer another() const
    {
        return {u"Box"_s, twoEntities, folder.filePath(u"private"_s)};
    }
};

EntityModel &people(const PersistentContainer &container)
{
    return *container.viewContext()->objects(u"People"_s);
}

void set(EntityModel &model, int row, int column, const QString &text)
{
    QVERIFY(model.setData(model.index(row, column), text));
}

void add(EntityModel &model, const QString &name)
{
    QVERIFY(model.insertRow(model.rowCount()));
    set(model, model.rowCount() - 1, 0, name);
}

QString save(const PersistentContainer &container)
{
    return container.viewContext()->save();
}

/// A store on disk with these names in it.
void fill(const Store &store, const QStringList &names)
{
    PersistentContainer container = store.another();
    QCOMPARE(container.loadPersistentStores().error, QString());
    for (const QString &name : names)
        add(people(container), name);
    QCOMPARE(save(container), QString());
}

/// The names that are in the store on disk.
QStringList stored(const Store &store)
{
    PersistentContainer container = store.another();
    if (const QString error = container.loadPersistentStores().error; !error.isEmpty())
        return {error};
    QStringList names;
    for (int row = 0; row < people(container).rowCount(); ++row)
        names += people(container).object(row).first();
    return names;
}

/// Runs a statement on a connection of another program, which stays open until the test function ends.
void intrude(const Store &store, const QString &statement)
{
    const QString name = u"intruder"_s;
    QSqlDatabase database = QSqlDatabase::database(name);
    if (!database.isValid())
        database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
    database.setDatabaseName(store.file);
    QVERIFY(database.isOpen() || database.open());
    QCOMPARE(SqlCall(database, statement).error(), QString());
}

/// While it lives, a file of this process can grow up to that size.
struct FileSizeLimit
{
    rlimit before = {};

    explicit FileSizeLimit(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limited = {size, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
};

/// While it lives, files are opened as by a user who owns nothing.
struct Nobody
{
    const int group = setfsgid(65534);
    const int user = setfsuid(65534);

    Nobody() = default;
    ~Nobody()
    {
        setfsuid(static_cast<uid_t>(user));
        setfsgid(static_cast<gid_t>(group));
    }
};

using Act = std::function<void(const Store &)>;

} // namespace

class tst_persistentcontainer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    static void cleanup() { QSqlDatabase::removeDatabase(u"intruder"_s); }

    void makesAPrivateStore()
    {
        Store store;
        const StoreLoading loading = store.container.loadPersistentStores();
        QCOMPARE(loading.error, QString());
        QCOMPARE(loading.location, store.file);
        QCOMPARE(loading.type, u"SQLite"_s);
        QCOMPARE(statusOf(store.file).st_mode & 0777U, 0600U);
        QCOMPARE(statusOf(store.folder.filePath(u"private"_s)).st_mode & 0777U, 0700U);
    }

    void keepsWhatIsPendingFromTheStoreUntilItIsSaved()
    {
        Store store;
        fill(store, {u"z"_s, u"a"_s, u"m"_s});
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        EntityModel &model = people(store.container);
        QVERIFY(model.removeRow(1));
        set(model, 0, 0, u"y"_s);
        add(model, u"b"_s);
        add(*store.container.viewContext()->objects(u"Things"_s), u"thing"_s);
        QCOMPARE(stored(store), (QStringList{u"z"_s, u"a"_s, u"m"_s}));
        QCOMPARE(save(store.container), QString());
        QCOMPARE(save(store.container), QString()); // which adds nothing a second time
        QCOMPARE(stored(store), (QStringList{u"y"_s, u"m"_s, u"b"_s}));
    }

    void keepsEveryText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a statement") << u"'; DROP TABLE People; --"_s;
        QTest::newRow("NUL inside") << u"a\0b"_s;
        QTest::newRow("beyond the basic plane, line feed, separators") << u"😀\n|^\"%1?"_s;
        QTest::newRow("a megabyte") << QString(1'000'000, u'x');
        QTest::newRow("empty") << QString();
    }

    void keepsEveryText()
    {
        QFETCH(QString, text);
        const Store store;
        fill(store, {text});
        QCOMPARE(stored(store), QStringList{text});
    }

    void deletesEveryObjectOfAnEntityAtOnce()
    {
        Store store;
        fill(store, {u"secret name"_s, u"b"_s});
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        add(people(store.container), u"pending"_s);
        add(*store.container.viewContext()->objects(u"Things"_s), u"thing"_s);
        QVERIFY(!store.container.viewContext()->batchDelete(u"Nothing"_s).isEmpty());
        QCOMPARE(store.container.viewContext()->batchDelete(u"People"_s), QString());
        QCOMPARE(stored(store), QStringList());
        QVERIFY(!contentOf(store.file).contains("secret name"));
        QCOMPARE(save(store.container), QString());
        QCOMPARE(stored(store), QStringList());
        QCOMPARE(store.container.viewContext()->objects(u"Things"_s)->rowCount(), 1);
    }

    void livesWithASecondContainer()
    {
        Store store;
        fill(store, {u"a"_s, u"b"_s, u"c"_s});
        PersistentContainer other = store.another();
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        QCOMPARE(other.loadPersistentStores().error, QString());
        set(people(store.container), 0, 0, u"first save"_s);
        set(people(store.container), 2, 0, u"edited where it is deleted"_s);
        set(people(other), 0, 0, u"last save"_s);
        QVERIFY(people(other).removeRow(2));
        add(people(other), u"new"_s); // must not get the key of the deleted one
        QCOMPARE(save(store.container), QString());
        QCOMPARE(save(other), QString());
        QVERIFY(people(store.container).removeRow(1));
        QCOMPARE(save(store.container), QString());
        QVERIFY(people(other).removeRow(1));
        set(people(store.container), 1, 0, u"edited after it was deleted"_s);
        QCOMPARE(save(store.container), QString());
        QCOMPARE(save(other), QString());
        QCOMPARE(stored(store), (QStringList{u"last save"_s, u"new"_s}));
    }

    void leavesAloneWhatItCannotUse_data()
    {
        const Table<QString, Act> cells;
        const auto sql = [](const QString &statement) -> Act {
            return [statement](const Store &store) { intrude(store, statement); };
        };
        const auto change = [](const std::function<QByteArray(QByteArray)> &changed) -> Act {
            return [changed](const Store &store) { put(store.file, changed(contentOf(store.file))); };
        };
        cells("not a database", u"not a database"_s, change([](const QByteArray &) { return "Not at all"; }));
        cells("damaged inside", u"damaged"_s,
              change([](QByteArray bytes) { return bytes.replace(4096, 4096, QByteArray(4096, '\xff')); }));
        cells("cut short", u"malformed"_s, change([](const QByteArray &bytes) { return bytes.first(6000); }));
        cells("a newer version", u"newer version"_s, sql(u"PRAGMA user_version = 2"_s));
        cells("another program's", u"something else"_s, sql(u"PRAGMA user_version = 0"_s));
        cells("a table without the attribute", u"note"_s, sql(u"ALTER TABLE People DROP COLUMN note"_s));
    }

    void leavesAloneWhatItCannotUse()
    {
        const auto [why, damage] = Table<QString, Act>::cells();
        Store store;
        fill(store, {u"a"_s});
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
        fill(store, {u"a"_s});
        QCOMPARE(::chmod(qPrintable(store.file), 0444), 0);
        QCOMPARE(::chmod(qPrintable(store.folder.filePath(u"private"_s)), 0755), 0);
        QCOMPARE(::chmod(qPrintable(store.folder.path()), 0755), 0);
        const Nobody nobody;
        const QString error = store.container.loadPersistentStores().error;
        QVERIFY2(error.contains(u"readonly"_s), qPrintable(error));
    }

    void refusesWhatIsNoFile()
    {
        Store store;
        QVERIFY(QDir().mkpath(store.file));
        const QString error = store.file + u": "_s + errorWords(OpenFile::notRegular);
        QCOMPARE(store.container.loadPersistentStores().error, error);
        QVERIFY(QDir().rmdir(store.file));
        QCOMPARE(::mkfifo(qPrintable(store.file), 0600), 0);
        QCOMPARE(store.container.loadPersistentStores().error, error);
    }

    void fillsAnEmptyFile()
    {
        Store store;
        put(store.file, {});
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        QCOMPARE(stored(store), QStringList());
    }

    void doesNotWaitForAnotherProgramsLock()
    {
        Store store;
        fill(store, {u"a"_s});
        intrude(store, u"BEGIN EXCLUSIVE"_s);
        QElapsedTimer time;
        time.start();
        const QString error = store.container.loadPersistentStores().error;
        QVERIFY2(error.contains(u"locked"_s), qPrintable(error));
        QVERIFY2(time.elapsed() < 4000, qPrintable(QString::number(time.elapsed())));
        intrude(store, u"ROLLBACK"_s);
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        QCOMPARE(people(store.container).rowCount(), 1);
    }

    void keepsPendingWhatCouldNotBeSaved()
    {
        Store store;
        fill(store, {u"a"_s, u"b"_s});
        QCOMPARE(store.container.loadPersistentStores().error, QString());
        set(people(store.container), 0, 0, u"edited"_s);
        QVERIFY(people(store.container).removeRow(1));
        add(people(store.container), QString(100'000, u'x'));
        {
            std::signal(SIGXFSZ, SIG_IGN);
            const FileSizeLimit full(40'000);
            QVERIFY(!save(store.container).isEmpty());
        }
        std::signal(SIGXFSZ, SIG_DFL);
        QCOMPARE(stored(store), (QStringList{u"a"_s, u"b"_s}));
        QCOMPARE(save(store.container), QString());
        QCOMPARE(stored(store), (QStringList{u"edited"_s, QString(100'000, u'x')}));
    }

    // The system kills the process with the write that passes the limit: first in the journal, further on
    // among the pages of the store itself.
    void losesNothingWhenItIsKilledInTheMiddleOfASave()
    {
        const QStringList before(20, QString(2'000, u'a'));
        const QStringList after(20, QString(6'000, u'b'));
        int kills = 0;
        int savings = 0;
        for (rlim_t size = 0; size < 200'000; size += 10'000) {
            const Store store;
            fill(store, before);
            const pid_t child = ::fork();
            if (child == 0) {
                const rlimit noCore = {};
                setrlimit(RLIMIT_CORE, &noCore);
                PersistentContainer container = store.another();
                (void)container.loadPersistentStores();
                for (int row = 0; row < people(container).rowCount(); ++row)
                    people(container).setData(people(container).index(row, 0), after.at(row));
                const FileSizeLimit deadly(size);
                ::_exit(save(container).isEmpty() ? 0 : 1);
            }
            int status = 0;
            QCOMPARE(::waitpid(child, &status, 0), child);
            const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ;
            QVERIFY(killed || WEXITSTATUS(status) == 0);
            ++(killed ? kills : savings);
            const QStringList found = stored(store);
            QVERIFY2(found == (killed ? before : after), qPrintable(found.join(u' ').left(200)));
        }
        QVERIFY(kills >= 5 && savings >= 1);
    }
};

OBLINO_TEST(tst_persistentcontainer, QCoreApplication)

#include "tst_persistentcontainer.moc"
