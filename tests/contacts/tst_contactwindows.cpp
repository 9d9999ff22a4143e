#include "otherprogram.h"
#include "storecontacts.h"

#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
#include <support/test.h>
#include <support/widgets.h>

namespace {

/// The contacts that another program finds in the store, as in "Ann:1 Bob:2".
QString stored(const TemporaryHome &home, const QString &table = u"Clients"_s)
{
    const QString rows = u"SELECT coalesce(name, '') || ':' || coalesce(phoneNo, '') FROM %1 ORDER BY id"_s;
    return runElsewhere(home.privateFolder(), rows.arg(table)).join(u' ');
}

/// Types into what has the focus; \n stands for Return, \t for Tab, \f for End, and as ASCII has them Esc,
/// Del.
void type(const QString &text)
{
    static const QHash<QChar, Qt::Key> keys = {{u'\n', Qt::Key_Return},
                                               {u'\t', Qt::Key_Tab},
                                               {u'\f', Qt::Key_End},
                                               {u'\x1b', Qt::Key_Escape},
                                               {u'\x7f', Qt::Key_Delete}};
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
    {
        controller = new Controller(home.privateFolder(), nullptr, 20ms);
        table = controller->template findChild<QTableView *>();
        showActive(*controller);
    }
    ~Window() { delete controller; }
    Q_DISABLE_COPY_MOVE(Window)

    void click(const char *name) const { oblino::click(*controller, name); }
    void typeAt(int row, int column, const QString &text) const
    {
        clickCell(*table, row, column);
        QTest::keyClick(table, Qt::Key_F2);
        type(text);
    }
    void add(const QString &text) const
    {
        click("addButton");
        type(text);
    }
    [[nodiscard]] QString shown() const { return columnOf(*table, NameColumn); }

    QPointer<Controller> controller;
    QTableView *table;
};

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
            window.add(u"Ann\t12 3\t"_s); // the Tab in the last cell ends editing
            QVERIFY(!qobject_cast<QLineEdit *>(QApplication::focusWidget()));
            window.add(u"Bob\t45\n"_s);
            QCOMPARE(stored(home), QString());
            type(u"\n"_s); // the default button
            QVERIFY(!window.controller->isVisible());
        });
        QCOMPARE(traces, "---Persistent Store---: " + home.privateFolder().toUtf8() +
                             "/Model.sqlite SQLite\nName Change\nName Change\n");
        const Window<ViewControllerTeamMgmt> team(home);
        team.add(u"Dana\t7\n"_s);
        team.click("okButton");
        QCOMPARE(stored(home, u"TeamMembers"_s), u"Dana:7"_s);
        QCOMPARE(stored(home), u"Ann:12 3 Bob:45"_s);
    }

    void editsInPlace()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(),
                               {{u"Cid"_s, u"1"_s}, {u"ann"_s, u"2"_s}, {u"Bob"_s, u"3"_s}});
        const Window window(home);
        QVERIFY(!find<QPushButton>(*window.controller, "removeButton").isEnabled());
        window.typeAt(0, NameColumn, u"x\t8\tY\n"_s);
        clickHeader(*window.table, NameColumn); // sorts for the eye, and once
        QCOMPARE(window.shown(), u"Bob x Y"_s);
        window.typeAt(0, NameColumn, u"Zoe\n"_s);
        window.add(u"B\n"_s);
        QCOMPARE(namelessIn(*window.controller), QString());
        QCOMPARE(window.shown(), u"Zoe x Y B"_s);
        window.typeAt(2, PhoneNoColumn, u"9"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_R, Qt::AltModifier);
        QTRY_COMPARE(window.shown(), u"Zoe x B"_s);
        clickCell(*window.table, 0, NameColumn);
        clickCell(*window.table, 2, PhoneNoColumn, Qt::ControlModifier);
        window.click("removeButton");
        QCOMPARE(stored(home), u"Cid:1 ann:2 Bob:3"_s);
        type(u"\x1b"_s);
        QCOMPARE(stored(home), u"x:8"_s);
    }

    void outlivesItsClosingUntilItsEditsAreInTheStore()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Zoë"_s, u"1\n2"_s}});
        const Window window(home);
        window.controller->setAttribute(Qt::WA_DeleteOnClose);
        const QSignalSpy failures(window.controller, &ContactWindow::savingFailed);
        const QSignalSpy successes(window.controller, &ContactWindow::saved);
        QVERIFY(!window.controller->isUnsaved());
        window.add(u"Bob"_s);
        QVERIFY(window.controller->isUnsaved());
        runElsewhere(home.privateFolder(), u"BEGIN EXCLUSIVE"_s);
        for (int closings = 1; closings <= 2; ++closings) {
            showActive(*window.controller); // which tries to save what was kept
            QTest::keyClick(window.controller, Qt::Key_Escape);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(window.controller && !window.controller->isVisible() && window.controller->isUnsaved());
        }
        const QString told = failures.value(0).value(0).toString();
        QVERIFY2(told.startsWith(u"The clients could not be saved: database is locked."_s), qPrintable(told));
        const QString path = window.controller->rescue();
        QVERIFY2(path.startsWith(home.privateFolder()) && path.contains(u"clients"_s), qPrintable(path));
        QCOMPARE(TemporaryHome::content(path), "Zoë\t1 2\nBob\t\n");
        runElsewhere(home.privateFolder(), u"ROLLBACK"_s);
        QTRY_VERIFY(!window.controller);
        QCOMPARE(stored(home), u"Zoë:1\n2 Bob:"_s);
        QCOMPARE(failures.size(), 3);
        QCOMPARE(successes.size(), 1);
    }

    void takesStepsBackByKeysUntilItCloses()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Cid"_s, u"2"_s}, {u"A&B"_s, u"1"_s}, {u"x"_s, {}}});
        const Window window(home);
        clickHeader(*window.table, NameColumn);
        const auto &undo = find<QToolButton>(*window.controller, "undoButton");
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {});
        QCoreApplication::sendEvent(window.table, &menu); // which selects the row that it is for
        auto &entries = find<QMenu>(*window.controller, "contactMenu");
        QCOMPARE(entries.pos(), window.table->viewport()->mapToGlobal(
                                    window.table->visualRect(window.table->currentIndex()).bottomLeft()));
        entries.close();
        showActive(*window.controller);
        clickCell(*window.table, 0, NameColumn, Qt::ControlModifier);
        type(u"\x7f"_s);
        QCOMPARE(window.shown(), u"x"_s);
        QCOMPARE(undo.toolTip(), u"Undo Remove 2 Contacts"_s);
        QTest::keySequence(window.table, QKeySequence(u"Ctrl+Z"_s));
        QCOMPARE(window.shown(), u"A&B Cid x"_s);
        QCOMPARE(window.table->selectionModel()->selectedRows().size(), 1);
        clickCell(*window.table, 0, NameColumn);
        QTest::keySequence(window.table, QKeySequence(u"Ctrl+Shift+C"_s));
        QCOMPARE(QGuiApplication::clipboard()->text(), u"1"_s);
        window.click("removeButton");
        QCOMPARE(undo.toolTip(), u"Undo Remove “A&B”"_s);
        QCOMPARE(undo.defaultAction()->text(), u"&Undo Remove “A&&B”"_s);
        window.typeAt(0, PhoneNoColumn, u"9\n"_s);
        window.click("undoButton");
        QCOMPARE(find<QToolButton>(*window.controller, "redoButton").toolTip(),
                 u"Redo Change Number of “Cid”"_s);
        QTest::keySequence(window.table, QKeySequence(u"Ctrl+Z"_s));
        QCOMPARE(window.controller->saveNow(), QString());
        QCOMPARE(stored(home), u"Cid:2 A&B:1 x:"_s);
        QCOMPARE(undo.toolTip(), u"Nothing to undo."_s);
    }

    // What was erased must not come back with what the window still has, though it cannot read the store.
    void dropsWhatItStillHasWhenTheEraserSaysSo()
    {
        const TemporaryHome home;
        storeContacts<Clients>(home.privateFolder(), {{u"Ann"_s, u"1"_s}});
        const Window window(home);
        window.controller->setAttribute(Qt::WA_DeleteOnClose);
        window.add(u"Bob"_s);
        runElsewhere(home.privateFolder(), u"BEGIN EXCLUSIVE"_s);
        window.controller->close();
        runElsewhere(home.privateFolder(), u"DELETE FROM Clients"_s);
        window.controller->reload(TeamMembers::fetchRequest());
        QVERIFY(window.controller->isUnsaved());
        window.controller->reload(Clients::fetchRequest());
        QVERIFY(!window.controller->isUnsaved());
        QVERIFY(!find<QToolButton>(*window.controller, "undoButton").isEnabled());
        runElsewhere(home.privateFolder(), u"COMMIT"_s);
        QTRY_VERIFY(!window.controller);
        QCOMPARE(stored(home), QString());
    }
};

OBLINO_TEST(tst_contactwindows, QApplication)

#include "tst_contactwindows.moc"
