#include "otherprogram.h"
#include "storecontacts.h"

#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>
#include <support/widgets.h>

#include <QSignalSpy>

#include <functional>
#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The contacts that another program finds in the store, as in "Ann:1 Bob:2".
QString stored(const TemporaryHome &home, const QString &table = u"Clients"_s)
{
    const OtherProgram other(home.privateFolder());
    const QString rows = u"SELECT coalesce(name, '') || ':' || coalesce(phoneNo, '') FROM %1 ORDER BY id"_s;
    return other.run(rows.arg(table)).join(u' ');
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
    explicit Window(const TemporaryHome &home, std::chrono::milliseconds retryInterval = 1h)
        : controller(new Controller(home.privateFolder(), nullptr, retryInterval))
        , table(*controller->template findChild<QTableView *>())
    {
        showActive(*controller);
    }
    Window(const Window &) = delete;
    Window &operator=(const Window &) = delete;
    ~Window() { delete controller; }

    void click(const char *name) const { oblino::click(*controller, name); }
    void clickCell(int row, int column, Qt::KeyboardModifiers keys = {}) const
    {
        oblino::clickCell(table, row, column, keys);
    }
    /// Adds a contact, and leaves the editor of its name open.
    void startAdding(const QString &name) const
    {
        click("addButton");
        type(name);
    }
    [[nodiscard]] QString shown() const { return columnOf(table, NameColumn); }

    QPointer<Controller> controller;
    QTableView &table;
};

using Edits = Table<QString, std::function<void(Window<> &)>>;
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
            window.startAdding(u"Ann\t12 3\t"_s); // the Tab in the last cell ends editing
            QVERIFY(!qobject_cast<QLineEdit *>(QApplication::focusWidget()));
            window.startAdding(u"Bob\t45\n"_s);
            QCOMPARE(stored(home), QString());
            type(u"\n"_s); // the default button
            QVERIFY(!window.controller->isVisible());
        });
        QCOMPARE(traces, "---Persistent Store---: " + home.privateFolder().toUtf8() +
                             "/Model.sqlite SQLite\nName Change\nName Change\n");
        const Window<ViewControllerTeamMgmt> team(home);
        team.startAdding(u"Dana\t7\n"_s);
        team.click("okButton");
        QCOMPARE(stored(home, u"TeamMembers"_s), u"Dana:7"_s);
        QCOMPARE(stored(home), u"Ann:12 3 Bob:45"_s);
    }

    // Each window goes away in another way.
    void editsInPlace_data()
    {
        const Edits row;
        row("Tab: phone number, next row's name", u"X:8 Y:2 Bob:3"_s, [](Window<> &window) {
            window.clickCell(0, 0);
            type(u"X\t8\tY\n"_s);
            window.click("okButton");
        });
        row("an editor left open", u"Cid:1 ann:2 Bob:99"_s, [](Window<> &window) {
            window.clickCell(2, 1);
            type(u"99"_s);
            delete window.controller;
        });
        row("Remove takes all selected rows", u"ann:2"_s, [](Window<> &window) {
            QVERIFY(!find<QPushButton>(*window.controller, "removeButton").isEnabled());
            window.clickCell(0, 0);
            window.clickCell(2, 1, Qt::ControlModifier);
            window.click("removeButton");
            window.controller->viewWillDisappear();
        });
        row("Remove while a cell is edited", u"Cid:1 Bob:3"_s, [](Window<> &window) {
            window.clickCell(1, 0);
            type(u"X"_s);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_R, Qt::AltModifier);
            QTRY_COMPARE(window.shown(), u"Cid Bob"_s);
            window.controller->close();
        });
        row("sorted for the eye only", u"Cid:1 Zoe:2 B:"_s, [](Window<> &window) {
            clickHeader(window.table, NameColumn);
            QCOMPARE(window.shown(), u"ann Bob Cid"_s);
            window.clickCell(0, 0);
            type(u"Zoe\n"_s);
            window.startAdding(u"B\n"_s);
            QCOMPARE(window.shown(), u"Zoe Bob Cid B"_s);
            window.clickCell(1, 0);
            window.click("removeButton");
            QTest::keyClick(window.controller, Qt::Key_Escape);
        });
    }
    void editsInPlace()
    {
        const auto [expected, act] = Edits::cells();
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(),
                               {{u"Cid"_s, u"1"_s}, {u"ann"_s, u"2"_s}, {u"Bob"_s, u"3"_s}});
        Window window(home);
        act(window);
        QCOMPARE(stored(home), expected);
    }

    void holdsOnlyWhatTheTaskListCanHold_data()
    {
        const Texts row; // the name that is there, what is typed, what is pasted in its place, what is stored
        const QString odd = u"a|b^\nc"_s;
        const QString megabyte(1'000'000, u'x');
        row("typed separators", u"was"_s, u"|^\n"_s, {}, u"was:1"_s);
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
            type(typed);
            QCOMPARE(QToolTip::text().contains(u"| and ^"_s), typed.contains(u'|'));
            if (!pasted.isEmpty()) {
                QGuiApplication::clipboard()->setText(pasted);
                QTest::keySequence(QApplication::focusWidget(), QKeySequence::SelectAll);
                QTest::keySequence(QApplication::focusWidget(), QKeySequence::Paste);
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
        const Table<bool> row;
        row("it tries again", false);
        row("it is shown again", true);
    }
    void outlivesItsClosingUntilItsEditsAreInTheStore()
    {
        const auto [isShownAgain] = Table<bool>::cells();
        const TemporaryHome home;
        const Window window(home, isShownAgain ? 1h : 20ms);
        window.controller->setAttribute(Qt::WA_DeleteOnClose);
        const QSignalSpy failures(window.controller, &ContactWindow::savingFailed);
        const QSignalSpy successes(window.controller, &ContactWindow::saved);
        window.startAdding(u"Bob"_s);
        const OtherProgram other(home.privateFolder());
        other.run(u"BEGIN EXCLUSIVE"_s);
        QTest::keyClick(window.controller, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(window.controller && !window.controller->isVisible());
        const QString told = failures.value(0).value(0).toString();
        QVERIFY2(told.startsWith(u"The clients could not be saved: database is locked."_s), qPrintable(told));
        other.run(u"ROLLBACK"_s);
        if (isShownAgain) {
            showActive(*window.controller);
            QCOMPARE(stored(home), u"Bob:"_s);
            QTest::keyClick(window.controller, Qt::Key_Escape);
        }
        QTRY_VERIFY(!window.controller);
        QCOMPARE(stored(home), u"Bob:"_s);
        QCOMPARE(failures.size(), 1);
        QCOMPARE(successes.size(), 1);
    }

    // What was erased must not come back with what the window still has, though it cannot read the store.
    void dropsWhatItStillHasWhenTheEraserSaysSo()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Ann"_s, u"1"_s}});
        const Window window(home, 20ms);
        window.controller->setAttribute(Qt::WA_DeleteOnClose);
        window.startAdding(u"Bob"_s);
        const OtherProgram other(home.privateFolder());
        other.run(u"BEGIN EXCLUSIVE"_s);
        window.controller->close();
        other.run(u"DELETE FROM Clients"_s);
        window.controller->reload(TeamMembers::fetchRequest());
        QVERIFY(window.controller->isUnsaved());
        window.controller->reload(Clients::fetchRequest());
        QVERIFY(!window.controller->isUnsaved());
        other.run(u"COMMIT"_s);
        QTRY_VERIFY(!window.controller);
        QCOMPARE(stored(home), QString());
    }

    void putsElsewhereWhatCannotBeSaved()
    {
        const TemporaryHome home;
        storeContacts<TeamMembers>(home.privateFolder(), {{u"Zoë"_s, u"1\n2"_s}});
        const Window<ViewControllerTeamMgmt> window(home);
        QVERIFY(!window.controller->isUnsaved());
        window.startAdding(u"Dana"_s);
        QVERIFY(window.controller->isUnsaved());
        const OtherProgram other(home.privateFolder());
        other.run(u"BEGIN EXCLUSIVE"_s);
        QVERIFY(!window.controller->saveNow().isEmpty());
        QVERIFY(window.controller->isUnsaved());
        const QString path = window.controller->rescue();
        QVERIFY2(path.startsWith(home.privateFolder()) && path.contains(u"team members"_s), qPrintable(path));
        QCOMPARE(TemporaryHome::content(path), "Zoë\t1 2\nDana\t\n");
    }
};

OBLINO_TEST(tst_contactwindows, QApplication)

#include "tst_contactwindows.moc"
