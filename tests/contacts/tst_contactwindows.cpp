#include "storecontacts.h"

#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>
#include <support/widgets.h>

#include <QScopeGuard>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <csignal>
#include <functional>
#include <memory>

#include <sys/mount.h>
#include <sys/resource.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The contacts that are in the store on disk, as in "Ann:1 Bob:2".
template<typename Contact = Clients>
QString stored(const TemporaryHome &home)
{
    const auto container = makeContactContainer(home.privateFolder());
    if (!container->loadPersistentStores().error.isEmpty())
        return u"not to be opened"_s;
    QStringList contacts;
    for (const Contact &contact : fetch<Contact>(container->viewContext()))
        contacts += contact.name + u':' + contact.phoneNo;
    return contacts.join(u' ');
}

/// Types into what has the focus; \n stands for Return, \t for Tab, \f for End, \x1b for Escape.
void type(const QString &text)
{
    static const QHash<QChar, Qt::Key> keys = {
        {u'\n', Qt::Key_Return}, {u'\t', Qt::Key_Tab}, {u'\f', Qt::Key_End}, {u'\x1b', Qt::Key_Escape}};
    for (const QChar character : text) {
        if (keys.contains(character))
            QTest::keyClick(QApplication::focusWidget(), keys.value(character));
        else
            QTest::keyClick(QApplication::focusWidget(), character.toLatin1());
        QCoreApplication::processEvents(); // the delegate ends editing with the next turn of the loop
    }
}

/// A management window, shown, driven by real events.
template<typename Controller = ViewControllerClientMgmt>
struct Window
{
    explicit Window(const TemporaryHome &home)
        : controller(std::make_unique<Controller>(home.privateFolder()))
        , table(*controller->template findChild<QTableView *>())
    {
        showActive(*controller);
    }

    void click(const char *name) const { oblino::click(*controller, name); }
    void clickCell(int row, int column) const { oblino::clickCell(table, row, column); }

    /// The line edit in which something is being edited, or null.
    [[nodiscard]] QLineEdit *field() const { return qobject_cast<QLineEdit *>(QApplication::focusWidget()); }

    static void type(const QString &text) { ::type(text); }
    [[nodiscard]] QString shown() const { return columnOf(table, NameColumn); }

    std::unique_ptr<Controller> controller;
    QTableView &table;
};

/// The clients that another program finds in the store, as in "Ann:1 Bob:2".
QString rowsIn(const TemporaryHome &home)
{
    QStringList rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"reader"_s);
        database.setDatabaseName(home.privateFolder() + u"/Model.sqlite"_s);
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        query.exec(u"SELECT name || ':' || coalesce(phoneNo, '') FROM Clients ORDER BY id"_s);
        while (query.next())
            rows += query.value(0).toString();
    }
    QSqlDatabase::removeDatabase(u"reader"_s);
    return rows.join(u' ');
}

/// The window of the clients as the program opens it, gone by itself after it was closed.
ViewControllerClientMgmt *openToDelete(const TemporaryHome &home, std::chrono::milliseconds retryInterval)
{
    auto *controller = new ViewControllerClientMgmt(home.privateFolder(), nullptr, retryInterval);
    controller->setAttribute(Qt::WA_DeleteOnClose);
    showActive(*controller);
    return controller;
}

/// What keeps a store from being written, as long as it is held.
using Spoilt = std::shared_ptr<void>;
using Spoil = std::function<Spoilt(const QString &file)>;

/// Locks the store as another program does, by the connection "other".
Spoilt lockStore(const QString &file)
{
    QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
    other.setDatabaseName(file);
    const bool isLocked = other.open() && QSqlQuery(other).exec(u"BEGIN EXCLUSIVE"_s);
    return {isLocked ? new int : nullptr, [](int *held) {
                delete held;
                QSqlDatabase::database(u"other"_s).close();
                QSqlDatabase::removeDatabase(u"other"_s);
            }};
}

using Act = std::function<void(Window<> &)>;
using Edits = Table<QString, Act>;
using Texts = Table<QString, QString, QString, QString>;

} // namespace

class tst_contactwindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesContactsFromTheKeysToTheStore()
    {
        const TemporaryHome home;
        const QByteArray traces = tracesOf([&home] {
            const Window window(home);
            window.click("addButton");
            window.type(u"Ann\t12 3\t"_s); // the Tab in the last cell ends editing
            QVERIFY(!window.field());
            window.click("addButton");
            window.type(u"Bob\t45\n"_s);
            QCOMPARE(stored(home), QString());
            window.type(u"\n"_s); // the default button
            QVERIFY(!window.controller->isVisible());
        });
        QCOMPARE(stored(home), u"Ann:12 3 Bob:45"_s);
        QCOMPARE(traces, "---Persistent Store---: " + home.privateFolder().toUtf8() +
                             "/Model.sqlite SQLite\nName Change\nName Change\n");
    }

    void keepsTheTeamApart()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Ann"_s, u"1"_s}});
        const Window<ViewControllerTeamMgmt> window(home);
        window.click("addButton");
        window.type(u"Dana\t7\n"_s);
        window.click("okButton");
        QCOMPARE(stored<TeamMembers>(home), u"Dana:7"_s);
        QCOMPARE(stored(home), u"Ann:1"_s);
    }

    void editsInPlace_data()
    {
        const Edits row;
        const auto typed = [](int cell, int column, const QString &keys) -> Act {
            return [=](Window<> &window) {
                window.clickCell(cell, column);
                window.type(keys);
            };
        };
        row("Tab: phone number, next row's name", u"X:8 Y:2 Bob:3"_s, typed(0, 0, u"X\t8\tY\n"_s));
        row("an editor left open", u"Cid:1 ann:2 Bob:99"_s, typed(2, 1, u"99"_s));
        row("Remove takes all selected rows", u"ann:2"_s, [](Window<> &window) {
            QVERIFY(!find<QPushButton>(*window.controller, "removeButton").isEnabled());
            window.clickCell(0, 0);
            clickCell(window.table, 2, 1, Qt::ControlModifier);
            window.click("removeButton");
        });
        row("Remove while a cell is edited", u"Cid:1 Bob:3"_s, [](Window<> &window) {
            window.clickCell(1, 0);
            window.type(u"X"_s);
            QTest::keyClick(window.field(), Qt::Key_R, Qt::AltModifier);
            QTRY_COMPARE(window.shown(), u"Cid Bob"_s);
        });
        row("sorted for the eye only", u"Cid:1 Zoe:2 B:"_s, [](Window<> &window) {
            clickHeader(window.table, NameColumn);
            QCOMPARE(window.shown(), u"ann Bob Cid"_s);
            window.clickCell(0, 0);
            window.type(u"Zoe\n"_s);
            window.click("addButton");
            window.type(u"B\n"_s);
            QCOMPARE(window.shown(), u"Zoe Bob Cid B"_s);
            window.clickCell(1, 0);
            window.click("removeButton");
        });
    }

    // Each window goes away in another way.
    void editsInPlace()
    {
        const auto [expected, act] = Edits::cells();
        const Act endings[] = {
            [](Window<> &window) { window.click("okButton"); },
            [](Window<> &window) { window.controller->close(); },
            [](Window<> &window) { window.controller->viewWillDisappear(); },
            [](Window<> &window) { window.controller.reset(); },
        };
        for (const auto &end : endings) {
            const TemporaryHome home;
            storeContacts<Clients>(home.privateFolder(),
                                   {{u"Cid"_s, u"1"_s}, {u"ann"_s, u"2"_s}, {u"Bob"_s, u"3"_s}});
            Window window(home);
            act(window);
            QCOMPARE(stored(home), u"Cid:1 ann:2 Bob:3"_s);
            end(window);
            QCOMPARE(stored(home), expected);
        }
    }

    void holdsOnlyWhatTheTaskListCanHold_data()
    {
        const Texts row; // the name that is there, what is typed, what is pasted in its place, what is stored
        const QString odd = u"a|b^\nc"_s;
        const QString megabyte(1'000'000, u'x');
        row("typed separators", u"was"_s, u"|^\n"_s, {}, u"was:1"_s);
        row("the end of a field", u"was"_s, u"|^"_s, u"a|b"_s, u"was:1"_s);
        row("lines, tabs and NUL become blanks", u"was"_s, {}, u"a\r\nb\tc\0d"_s, u"a b c d:1"_s);
        row("only looked at", odd, u"\t8\n"_s, {}, odd + u":8"_s);
        row("edited, without what is refused", odd, u"\fX\n"_s, {}, u"a b  cX:1"_s);
        row("longer than a line edit usually takes", megabyte, u"\fX\n"_s, {}, megabyte + u"X:1"_s);
    }

    void holdsOnlyWhatTheTaskListCanHold()
    {
        const auto [name, typed, pasted, expected] = Texts::cells();
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{name, u"1"_s}});
        {
            const Window window(home);
            window.clickCell(0, 0);
            QTest::keyClick(&window.table, Qt::Key_F2);
            window.type(typed);
            QCOMPARE(QToolTip::text().contains(u"| and ^"_s), typed.contains(u'|'));
            if (!pasted.isEmpty()) {
                window.field()->selectAll();
                QGuiApplication::clipboard()->setText(pasted);
                QTest::keyClick(window.field(), Qt::Key_V, Qt::ControlModifier);
            }
        }
        QVERIFY2(stored(home) == expected, qPrintable(stored(home).left(100)));
    }

    void saysWhyItShowsNothing()
    {
        const TemporaryHome home;
        QVERIFY(QDir().mkpath(home.privateFolder()));
        const QString file = home.privateFolder() + u"/Model.sqlite"_s;
        TemporaryHome::write(file, "Not at all");
        const QByteArray traces = tracesOf([&home] {
            const Window window(home);
            const QString words = window.table.accessibleDescription();
            QVERIFY2(words.contains(u"could not be opened"_s), qPrintable(words));
            QVERIFY(!find<QPushButton>(*window.controller, "addButton").isEnabled());
            window.click("okButton");
        });
        QVERIFY(traces.startsWith("Unable to Add Persistent Store " + file.toUtf8()));
        QCOMPARE(TemporaryHome::content(file), "Not at all");
    }

    void outlivesItsClosingUntilItsEditsAreInTheStore_data()
    {
        const Table<Spoil> row;
        row("another program has locked it", lockStore);
        row("files may not grow", [](const QString &) -> Spoilt {
            std::signal(SIGXFSZ, SIG_IGN);
            const auto limit = std::make_shared<rlimit>();
            ::getrlimit(RLIMIT_FSIZE, limit.get());
            const rlimit none = {1, limit->rlim_max};
            ::setrlimit(RLIMIT_FSIZE, &none);
            return {limit.get(), [limit](rlimit *before) {
                        ::setrlimit(RLIMIT_FSIZE, before);
                        std::signal(SIGXFSZ, SIG_DFL);
                    }};
        });
        row("the disk is full", [](const QString &file) -> Spoilt {
            const QString filler = QFileInfo(file).path() + u"/filler"_s;
            QFile rest(filler);
            if (rest.open(QIODevice::WriteOnly)) {
                while (rest.write(QByteArray(4096, 'x')) > 0 && rest.flush()) {
                }
            }
            return {new QString(filler), [](QString *path) {
                        QFile::remove(*path);
                        delete path;
                    }};
        });
    }
    void outlivesItsClosingUntilItsEditsAreInTheStore()
    {
        const auto [spoil] = Table<Spoil>::cells();
        const TemporaryHome home;
        const QByteArray folder = QFile::encodeName(home.privateFolder());
        QVERIFY(QDir().mkpath(home.privateFolder()));
        const bool needsDisk = QLatin1String(QTest::currentDataTag()) == u"the disk is full"_s;
        if (needsDisk && ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=128k") != 0)
            QSKIP("No file system may be mounted here.");
        const auto unmount = qScopeGuard([&] {
            if (needsDisk)
                ::umount2(folder.constData(), MNT_DETACH);
        });
        storeContacts<Clients>(home.privateFolder(), {{u"Ann"_s, u"1"_s}});
        QPointer<ViewControllerClientMgmt> controller = openToDelete(home, 20ms);
        const QSignalSpy failures(controller, &ContactWindow::savingFailed);
        const QSignalSpy successes(controller, &ContactWindow::saved);
        clickCell(find<QTableView>(*controller, "clientTable"), 0, 0);
        type(u"Bob"_s);
        Spoilt spoilt = spoil(home.privateFolder() + u"/Model.sqlite"_s);
        QTest::keyClick(controller, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const bool isKept = controller && !controller->isVisible();
        spoilt.reset();
        QVERIFY(isKept);
        const QString told = failures.value(0).value(0).toString();
        QVERIFY2(told.startsWith(u"The clients could not be saved: "_s), qPrintable(told));
        QTRY_VERIFY(!controller);
        QCOMPARE(rowsIn(home), u"Bob:1"_s);
        QCOMPARE(failures.size(), 1);
        QCOMPARE(successes.size(), 1);
    }

    void savesWhatItStillHasWhenItIsShownAgain()
    {
        const TemporaryHome home;
        const QPointer<ViewControllerClientMgmt> controller = openToDelete(home, 1h);
        click(*controller, "addButton");
        type(u"Ann"_s);
        Spoilt lock = lockStore(home.privateFolder() + u"/Model.sqlite"_s);
        controller->close();
        QVERIFY(controller && !controller->isVisible());
        lock.reset();
        showActive(*controller);
        QCOMPARE(rowsIn(home), u"Ann:"_s);
        QTest::keyClick(controller, Qt::Key_Escape);
        QTRY_VERIFY(!controller);
    }

    // What was erased must not come back with what the window still has, though it cannot read the store.
    void dropsWhatItStillHasWhenTheEraserSaysSo()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Ann"_s, u"1"_s}});
        const QPointer<ViewControllerClientMgmt> controller = openToDelete(home, 20ms);
        click(*controller, "addButton");
        type(u"Bob"_s);
        Spoilt lock = lockStore(home.privateFolder() + u"/Model.sqlite"_s);
        controller->close();
        QVERIFY(QSqlQuery(QSqlDatabase::database(u"other"_s)).exec(u"DELETE FROM Clients"_s));
        controller->reload(TeamMembers::fetchRequest());
        QVERIFY(controller->isUnsaved());
        controller->reload(Clients::fetchRequest());
        QVERIFY(!controller->isUnsaved());
        QVERIFY(QSqlQuery(QSqlDatabase::database(u"other"_s)).exec(u"COMMIT"_s));
        lock.reset();
        QTRY_VERIFY(!controller);
        QCOMPARE(rowsIn(home), QString());
    }

    void putsElsewhereWhatCannotBeSaved()
    {
        const TemporaryHome home;
        storeContacts<TeamMembers>(home.privateFolder(), {{u"Zoë"_s, u"1\n2"_s}});
        const Window<ViewControllerTeamMgmt> window(home);
        UnsavedWork &work = *window.controller;
        QVERIFY(!work.isUnsaved());
        window.click("addButton");
        window.type(u"Dana"_s);
        QVERIFY(work.isUnsaved());
        Spoilt lock = lockStore(home.privateFolder() + u"/Model.sqlite"_s);
        const QString error = work.saveNow();
        QVERIFY2(error.startsWith(u"The team members could not be saved: database is locked."_s),
                 qPrintable(error));
        QVERIFY(work.isUnsaved());
        const QString path = work.rescue();
        QVERIFY2(path.startsWith(home.privateFolder()) && path.contains(u"team members"_s), qPrintable(path));
        QCOMPARE(TemporaryHome::content(path), "Zoë\t1 2\nDana\t\n");
        lock.reset();
        QCOMPARE(work.saveNow(), QString());
        QVERIFY(!work.isUnsaved());
        QCOMPARE(stored<TeamMembers>(home), u"Zoë:1\n2 Dana:"_s);
    }
};

OBLINO_TEST(tst_contactwindows, QApplication)

#include "tst_contactwindows.moc"
