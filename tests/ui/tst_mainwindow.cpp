#include "mainwindowfixture.h"

#include <controls/messageboxalert.h>
#include <controls/oblinostyle.h>
#include <ui/windows/taskwindow.h>

using Changes = Table<const char *, int, const char *, const char *, QString, QString>;

namespace {

const QList<Row> fourTasks = {
    {.name = "cherry", .date = "3/9/26", .client = "Acme Ltd"},
    {.name = "apple", .date = "3/7/26", .status = 1},
    {.name = "banana", .date = "3/8/26", .client = "Harbor Cafe"},
    {.name = "date", .date = "3/10/26", .hidden = true},
};

constexpr int globalAll = 6;

// What of a window has no room for its text, or lies outside the window or the screen.
QString cutIn(const QWidget &window)
{
    QStringList cut;
    if (!QRect(QPoint(), window.screen()->availableSize()).contains(window.rect()))
        cut += u"the window"_s;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        const bool hasText = widget->inherits("QLabel") || widget->inherits("QAbstractButton") ||
                             widget->inherits("QLineEdit") || widget->inherits("QComboBox");
        const bool isPart =
            widget->parent()->inherits("QLineEdit") || widget->parent()->inherits("QComboBox");
        if (!hasText || isPart || !widget->isVisible())
            continue;
        const QSize needed = widget->minimumSizeHint();
        if (needed.width() > widget->width() || needed.height() > widget->height() ||
            !window.rect().contains(QRect(widget->mapTo(&window, QPoint()), widget->size())))
            cut += widget->objectName() + u": %1 x %2"_s.arg(widget->width()).arg(widget->height());
    }
    return cut.join(u'\n');
}

} // namespace

/// On a screen of 1024 x 600 pixels (small_screen.json).
class tst_mainwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new OblinoStyle); }

    void startsSortedByDateWithElevenColumnsOfWhatCanBeRead()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        const Row second{.name = "b", .date = "3/8/26"};
        const Row first{.name = "a", .date = "3/7/26", .client = "Acme", .desc = "one\ntwo"};
        const MainWindow main(second.bytes() + "broken|row^" + first.bytes());
        QStringList row;
        for (int column = 0; column < main.table().model()->columnCount(); ++column)
            row += columnOf(main.table(), column).section(u' ', 0, 0);
        QCOMPARE(row.join(u'|'), u"3/7/26|09:30|17:00|a|Acme|Dana|one...|Open|High|3/9/26|KEY-a"_s);
        QCOMPARE(main.file(), main.listAtStart);
        QVERIFY(main.notice().contains(u"1 row of ltodolist.txt cannot be read."_s));
        main.clickRow(u"b"_s);
        main.click("hideButton");
        QVERIFY(main.home.kept().contains("broken|row^") &&
                main.notice().contains(main.home.privateFolder()));
    }

    void fitsItsScreenWithALargeFont()
    {
        const QFont usual = QApplication::font();
        QFont large = usual;
        large.setPointSizeF(usual.pointSizeF() * 1.5);
        QApplication::setFont(large);
        const MainWindow main(fourTasks);
        QCOMPARE(main.window->screen()->size(), QSize(1024, 600));
        QCOMPARE(cutIn(*main.window), QString());
        main.clickRow(u"apple"_s);
        for (const char *action : {"newTaskAction", "editAction"}) {
            find<QAction>(*main.window, action).trigger();
            const std::unique_ptr<TaskWindow> form(main.window->findChild<TaskWindow *>());
            QVERIFY(QTest::qWaitForWindowActive(form.get()));
            QCOMPARE(cutIn(*form), QString());
        }
        QApplication::setFont(usual);
    }

    void canBeReadByAScreenReader()
    {
        QAccessible::setActive(true);
        const MainWindow main(fourTasks);
        find<QAction>(*main.window, "filterAction").trigger();
        for (QWidget *widget : main.window->findChildren<QWidget *>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible())
                continue;
            const QAccessibleInterface *node = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(!node->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        }
        QVERIFY(!QAccessible::queryAccessibleInterface(&main.table())->tableInterface()->cellAt(-1, -1));
        QAccessible::setActive(false);
    }

    void worksFromTheKeyboardAlone()
    {
        MainWindow main(fourTasks);
        QTest::keyClick(main.window.get(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&main.searchField(), u"a"_s);
        QTest::keyClick(&main.searchField(), Qt::Key_Return);
        QTest::keyClicks(&main.searchField(), u"p"_s);
        QCOMPARE(main.selectedName(), u"apple"_s);
        QVERIFY(main.button("deleteButton").isEnabled());
        QTest::keyClicks(&main.searchField(), u"x"_s);
        QVERIFY(!main.button("deleteButton").isEnabled());
        QVERIFY(find<QLabel>(*main.window, "emptyTitle").isVisible());
        QTest::keyClick(&main.searchField(), Qt::Key_Escape);
        QCOMPARE(main.shown(), u"apple banana cherry"_s);
        QTest::keyClicks(&main.searchField(), u"ACME"_s);
        QCOMPARE(main.shown(), u"cherry"_s);
        QTest::mouseClick(main.searchField().findChildren<QToolButton *>().last(), Qt::LeftButton);
        QTest::keyClick(&main.table(), Qt::Key_Down);
        QTest::keyClick(&main.table(), Qt::Key_Delete);
        QCOMPARE(main.saved(), u"banana cherry date"_s);
        QTest::keyClick(&main.table(), Qt::Key_Space);
        QCOMPARE(main.selectedName(), u"banana"_s);
        QTest::keyClick(main.window.get(), Qt::Key_5, Qt::ControlModifier);
        QCOMPARE(main.views().currentText() + main.shown(), u"Hidden Opendate"_s);
    }

    void changesTheListAndTheFile_data()
    {
        // the search term, the view, whom to select, what to press, what is shown, what is saved
        const Changes row;
        const QString all = u"apple banana cherry date"_s;
        row("delete in a search", "banan", 0, "banana", "deleteButton", {}, u"apple cherry date"_s);
        row("hide in a search", "a", 0, "banana", "hideButton", u"apple cherry"_s, all);
        row("clone in a search joins the full list", "ban", 0, "banana", "cloneButton", u"banana banana"_s,
            all + u" banana"_s);
        row("up", "", globalAll, "banana", "upperButton", u"banana apple cherry date"_s,
            u"banana apple cherry date"_s);
        row("down", "", globalAll, "banana", "downerButton", u"apple cherry banana date"_s,
            u"apple cherry banana date"_s);
        row("down in a search leaves the full list", "h", globalAll, "banana", "downerButton",
            u"cherry banana"_s, all);
        row("first one up", "", globalAll, "apple", "upperButton", all, all);
    }
    void changesTheListAndTheFile()
    {
        const auto [term, view, name, button, shown, saved] = Changes::cells();
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(view);
        QTest::keyClicks(&main.searchField(), QLatin1String(term));
        main.clickRow(QLatin1String(name));
        main.click(button);
        QCOMPARE(main.shown(), shown);
        QCOMPARE(main.saved(), saved);
        QCOMPARE(main.selectedName(), view == globalAll ? QLatin1String(name) : QLatin1String());
    }

    void closesAndHidesAndMovesOnlyWhatItCan()
    {
        MainWindow main(fourTasks);
        const auto said = [&main](const char *button) {
            main.click(button);
            return main.questions.asked.isEmpty() ? QString()
                                                  : main.questions.asked.takeLast().informativeText;
        };
        main.clickRow(u"banana"_s);
        QCOMPARE(said("upperButton"), u"Change to Global-All View to order Tasks."_s);
        QCOMPARE(said("downerButton"), u"Change to the Global-All View to order Tasks."_s);
        main.views().setCurrentIndex(globalAll);
        for (const char *last : {"Closed", "Open"}) { // of one button
            main.clickRow(u"date"_s);
            QCOMPARE(said("closeButton"), u""_s);
            QCOMPARE(columnOf(main.table(), 7), u"Closed Open Open "_s + QLatin1String(last));
        }
        main.clickRow(u"date"_s);
        QCOMPARE(main.button("hideButton").toolTip(), u"UNHIDE"_s);
        QCOMPARE(said("hideButton"), u""_s);
        QCOMPARE(main.button("hideButton").toolTip(), u"HIDE"_s);
        QVERIFY(!main.file().contains("|true|"));
    }

    void tellsItsShortcuts()
    {
        const MainWindow main(fourTasks);
        QCOMPARE(main.button("deleteButton").toolTip(), u"Select a task first."_s);
        QVERIFY(find<QAction>(*main.window, "newTaskAction").toolTip() == u"Add a task (Ctrl+N)"_s);
        find<QAction>(*main.window, "shortcutsAction").trigger();
        const auto &table = find<QTableView>(*main.window, "shortcutTable");
        QVERIFY(columnOf(table, 2).contains(u"Ctrl+E, F2"_s));
        QTest::keyClicks(&find<QLineEdit>(*main.window, "shortcutSearch"), u"shift+z"_s);
        QCOMPARE(columnOf(table, 0) + columnOf(table, 1), u"EditRedo"_s);
        QSet<QString> keys; // none has two commands
        for (const QAction *action : main.window->findChildren<QAction *>()) {
            for (const QKeySequence &key : action->shortcuts()) {
                QVERIFY2(!keys.contains(key.toString()), qPrintable(key.toString()));
                keys.insert(key.toString());
            }
        }
    }

    void deletesOnlyOnAnExplicitYesTheTaskItAskedAbout()
    {
        MainWindow main(fourTasks);
        for (const std::optional<int> answer : {std::optional(1), std::optional<int>(), std::optional(0)}) {
            main.questions.answer = answer;
            main.clickRow(u"banana"_s);
            main.questions.whileAsked = [&main] { // another program's or form's deed
                main.store.setSelected(u"KEY-apple"_s);
                main.notifications.post(u"reload"_s);
            };
            main.click("deleteButton");
            QCOMPARE(main.saved(), answer == 0 ? u"apple cherry date"_s : u"apple banana cherry date"_s);
        }
        const Alert::Question asked = main.questions.asked.last();
        QCOMPARE(asked.messageText, u"The task will be deleted locally as well as from the iCloud if "
                                    "present. Are you sure you want to delete ?"_s);
        QCOMPARE(asked.informativeText + asked.buttons.join(u' '), u"bananaYes No"_s);
    }

    void answersOnlyWhatWasPressed()
    {
        // In an event loop of the application's, as in the program; without a key that loop ends.
        const auto answerTo = [this](Qt::Key key) {
            std::optional<int> answer = -2;
            QTimer::singleShot(0, this, [&] {
                QTimer::singleShot(0, this, [key] {
                    key ? QTest::keyClick(QApplication::activeModalWidget(), key) : QCoreApplication::exit();
                });
                answer = MessageBoxAlert().ask({u"<b>?</b>"_s, {}, {u"Yes"_s, u"No"_s}, 1});
                QCoreApplication::exit();
            });
            QApplication::exec();
            return answer;
        };
        QCOMPARE(answerTo(Qt::Key_Return), 1);
        QCOMPARE(answerTo(Qt::Key_Escape), 1);
        QCOMPARE(answerTo({}), std::nullopt);
    }

    void sortsByAHeaderWithoutSavingAndKeepsTheSelection()
    {
        MainWindow main(fourTasks);
        main.clickRow(u"banana"_s);
        for (const QString &shown : {u"apple banana cherry"_s, u"cherry banana apple"_s}) {
            clickHeader(main.table(), 3);
            QCOMPARE(main.shown(), shown);
        }
        QCOMPARE(main.table().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
        QCOMPARE(main.selectedName(), u"banana"_s);
        QCOMPARE(main.file(), main.listAtStart);
        main.click("cloneButton");
        QCOMPARE(main.saved(), u"date cherry banana apple banana"_s);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Shift+R"_s)); // what was sorted last
        QCOMPARE(main.shown(), u"apple banana banana cherry"_s);
    }
};

OBLINO_TEST(tst_mainwindow, QApplication)

#include "tst_mainwindow.moc"
