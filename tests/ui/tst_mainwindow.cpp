#include "mainwindowfixture.h"

#include <support/testmain.h>

#include <QAccessible>
#include <QSignalSpy>

#include <functional>

using namespace oblino;

namespace {

const QList<Row> fourTasks = {
    {.name = "cherry", .date = "3/9/26", .client = "Acme Ltd"},
    {.name = "apple", .date = "3/7/26", .status = 1},
    {.name = "banana", .date = "3/8/26", .client = "Harbor Cafe"},
    {.name = "date", .date = "3/10/26", .hidden = true},
};

constexpr int globalAll = 6;

const QStringList selectionButtons = {QStringLiteral("deleteButton"), QStringLiteral("hideButton"),
                                      QStringLiteral("cloneButton"), QStringLiteral("closeButton")};

} // namespace

class tst_mainwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmptyWithNothingToCommand()
    {
        MainWindow main({});
        QCOMPARE(main.table().model()->rowCount(), 0);
        for (const char *name :
             {"editButton", "deleteButton", "hideButton", "shareButton", "cloneButton", "closeButton"})
            QVERIFY2(!main.button(name).isEnabled(), name);
        QVERIFY(main.window->findChild<QLabel *>(QStringLiteral("emptyTitle"))->isVisible());
        QVERIFY(!QFile::exists(main.home.listPath()));
    }

    void startsSortedByDateWithElevenColumns()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        MainWindow main({{.name = "b", .date = "3/8/26"},
                         {.name = "a", .date = "3/7/26", .client = "Acme", .desc = "one\ntwo"}});
        const QStringList expected = {
            QStringLiteral("3/7/26"), QStringLiteral("09:30"), QStringLiteral("17:00"),
            QStringLiteral("a"),      QStringLiteral("Acme"),  QStringLiteral("Dana"),
            QStringLiteral("one..."), QStringLiteral("Open"),  QStringLiteral("High"),
            QStringLiteral("3/9/26"), QStringLiteral("KEY-a")};
        QStringList row;
        for (int column = 0; column < main.table().model()->columnCount(); ++column)
            row += main.cell(0, column);
        QCOMPARE(row, expected);
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
    }

    void showsTheChosenView_data()
    {
        QTest::addColumn<int>("view");
        QTest::addColumn<QString>("names");
        QTest::newRow("All leaves out the hidden one") << 0 << "apple banana cherry";
        QTest::newRow("Closed") << 2 << "apple";
        QTest::newRow("Hidden Open") << 4 << "date";
        QTest::newRow("Global-All") << 6 << "apple banana cherry date";
    }

    void showsTheChosenView()
    {
        QFETCH(int, view);
        MainWindow main(fourTasks);
        main.clickRow(QStringLiteral("apple"));
        main.views().setFocus();
        for (int i = 0; i < view; ++i)
            QTest::keyClick(&main.views(), Qt::Key_Down);
        QTEST(main.shown(), "names");
        QVERIFY(view == 0 || !main.button("deleteButton").isEnabled());
    }

    void searchesAsOneTypesAndEndsWithEscape()
    {
        MainWindow main(fourTasks);
        QTest::keyClick(main.window.get(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(main.searchField().hasFocus());
        QTest::keyClicks(&main.searchField(), QStringLiteral("ACME"));
        QCOMPARE(main.shown(), QStringLiteral("cherry"));
        QTest::keyClick(&main.searchField(), Qt::Key_Escape);
        QCOMPARE(main.shown(), QStringLiteral("apple banana cherry"));
    }

    void emptiesTheSearchFieldByTheButtonInIt()
    {
        MainWindow main(fourTasks);
        QToolButton *emptying = main.searchField().findChildren<QToolButton *>().last();
        QVERIFY(!emptying->isVisible());
        QTest::keyClicks(&main.searchField(), QStringLiteral("ACME"));
        QTest::mouseClick(emptying, Qt::LeftButton);
        QCOMPARE(main.shown(), QStringLiteral("apple banana cherry"));
        QVERIFY(!emptying->isVisible());
    }

    void enablesCommandsOnlyForATaskThatIsSelectedAndShown()
    {
        MainWindow main(fourTasks);
        const auto enabled = [&main] {
            QStringList names;
            for (const QString &name : selectionButtons) {
                if (main.button(qPrintable(name)).isEnabled())
                    names += name;
            }
            return names;
        };
        main.clickRow(QStringLiteral("banana"));
        QCOMPARE(enabled(), selectionButtons);
        QTest::keyClicks(&main.searchField(), QStringLiteral("ban"));
        QCOMPARE(main.selectedName(), QStringLiteral("banana"));
        QCOMPARE(enabled(), selectionButtons);
        QTest::keyClicks(&main.searchField(), QStringLiteral("x"));
        QCOMPARE(enabled(), QStringList());
    }

    void changesTheListAndTheFile_data()
    {
        using Act = std::function<void(MainWindow &)>;
        QTest::addColumn<Act>("act");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("saved");
        const auto afterSelecting = [](const char *name, const char *button) -> Act {
            return [name, button](MainWindow &main) {
                main.clickRow(QLatin1String(name));
                main.click(button);
            };
        };
        const auto inSearchOf = [](const char *term, const Act &act) -> Act {
            return [term, act](MainWindow &main) {
                QTest::keyClicks(&main.searchField(), QLatin1String(term));
                act(main);
            };
        };
        const auto inGlobalAll = [](const Act &act) -> Act {
            return [act](MainWindow &main) {
                main.views().setCurrentIndex(globalAll);
                act(main);
            };
        };
        QTest::newRow("delete") << afterSelecting("banana", "deleteButton") << "apple cherry"
                                << "apple cherry date";
        QTest::newRow("delete during a search")
            << inSearchOf("banan", afterSelecting("banana", "deleteButton")) << ""
            << "apple cherry date";
        QTest::newRow("hide") << afterSelecting("banana", "hideButton") << "apple cherry"
                              << "apple banana cherry date";
        QTest::newRow("hide during a search")
            << inSearchOf("a", afterSelecting("banana", "hideButton")) << "apple cherry"
            << "apple banana cherry date";
        QTest::newRow("clone goes to the end")
            << afterSelecting("apple", "cloneButton") << "apple banana cherry apple"
            << "apple banana cherry date apple";
        QTest::newRow("clone during a search joins the full list")
            << inSearchOf("ban", afterSelecting("banana", "cloneButton")) << "banana banana"
            << "apple banana cherry date banana";
        QTest::newRow("up") << inGlobalAll(afterSelecting("banana", "upperButton"))
                            << "banana apple cherry date"
                            << "banana apple cherry date";
        QTest::newRow("down") << inGlobalAll(afterSelecting("banana", "downerButton"))
                              << "apple cherry banana date"
                              << "apple cherry banana date";
        QTest::newRow("first one up")
            << inGlobalAll(afterSelecting("apple", "upperButton")) << "apple banana cherry date"
            << "apple banana cherry date";
    }

    void changesTheListAndTheFile()
    {
        QFETCH(std::function<void(MainWindow &)>, act);
        MainWindow main(fourTasks);
        act(main);
        QTEST(main.shown(), "shown");
        QTEST(main.saved(), "saved");
    }

    void keepsAMovedTaskSelectedButNoOther()
    {
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(globalAll);
        main.clickRow(QStringLiteral("banana"));
        main.click("downerButton");
        QCOMPARE(main.selectedName(), QStringLiteral("banana"));
        QVERIFY(main.button("deleteButton").isEnabled());
        main.click("hideButton");
        QCOMPARE(main.selectedName(), QString());
        QVERIFY(!main.button("deleteButton").isEnabled());
    }

    void refusesToMove_data()
    {
        QTest::addColumn<int>("view");
        QTest::addColumn<bool>("deleteFirst");
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QString>("message");
        QTest::newRow("up elsewhere")
            << 0 << false << QByteArray("upperButton") << "Change to Global-All View to order Tasks.";
        QTest::newRow("down elsewhere")
            << 0 << false << QByteArray("downerButton") << "Change to the Global-All View to order Tasks.";
        QTest::newRow("nothing selected")
            << globalAll << false << QByteArray("upperButton") << "Select a Task.";
        QTest::newRow("the selected task is gone")
            << globalAll << true << QByteArray("downerButton") << "Select a Task.";
    }

    void refusesToMove()
    {
        QFETCH(int, view);
        QFETCH(bool, deleteFirst);
        QFETCH(QByteArray, button);
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(view);
        if (deleteFirst) {
            main.clickRow(QStringLiteral("banana"));
            main.click("deleteButton");
        }
        const QString before = main.shown();
        main.click(button.constData());
        QTEST(main.questions.asked.last().informativeText, "message");
        QCOMPARE(main.questions.asked.last().buttons, QStringList(QStringLiteral("OK")));
        QCOMPARE(main.shown(), before);
    }

    void showsWhetherTheSelectedTaskIsHidden()
    {
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(globalAll);
        main.clickRow(QStringLiteral("date"));
        QCOMPARE(main.button("hideButton").toolTip(), QStringLiteral("UNHIDE"));
        QCOMPARE(main.button("hideButton").icon().name(), QStringLiteral("AppHideIcon"));
        main.click("hideButton");
        QCOMPARE(main.button("hideButton").toolTip(), QStringLiteral("HIDE"));
        QCOMPARE(main.button("hideButton").icon().name(), QStringLiteral("AppShowIcon"));
        QVERIFY(!main.store.tasks().last().hidden);
    }

    void closesATaskOnce()
    {
        MainWindow main(fourTasks);
        main.clickRow(QStringLiteral("banana"));
        main.click("closeButton");
        QCOMPARE(main.cell(1, 7), QStringLiteral("Closed"));
        main.clickRow(QStringLiteral("banana"));
        main.click("closeButton");
        QCOMPARE(main.questions.asked.size(), 1);
        QCOMPARE(main.questions.asked.last().informativeText, QStringLiteral("Task already closed"));
    }

    void deletesOnlyOnAnExplicitYes_data()
    {
        QTest::addColumn<std::optional<int>>("answer");
        QTest::newRow("No") << std::optional(1);
        QTest::newRow("the program ends under the question") << std::optional<int>();
    }

    void deletesOnlyOnAnExplicitYes()
    {
        QFETCH(std::optional<int>, answer);
        MainWindow main(fourTasks);
        main.questions.answer = answer;
        main.clickRow(QStringLiteral("banana"));
        main.click("deleteButton");
        QCOMPARE(main.questions.asked.last().messageText,
                 QStringLiteral(
                     "The task will be deleted locally as well as from the iCloud if present. Are you sure "
                     "you want to delete ?"));
        QCOMPARE(main.questions.asked.last().informativeText, QStringLiteral("banana"));
        QCOMPARE(main.questions.asked.last().buttons,
                 QStringList({QStringLiteral("Yes"), QStringLiteral("No")}));
        QCOMPARE(main.saved(), QStringLiteral("apple banana cherry date"));
    }

    void deletesTheTaskItAskedAboutThoughTheListChangedMeanwhile()
    {
        MainWindow main(fourTasks);
        main.clickRow(QStringLiteral("banana"));
        main.questions.whileAsked = [&main] {
            main.store.setTasks(main.store.tasks().sliced(1));
            main.notifications.post(QStringLiteral("reload"));
        };
        main.click("deleteButton");
        QCOMPARE(main.saved(), QStringLiteral("cherry date"));
    }

    void sortsByAHeaderWithoutSavingAndKeepsTheSelection()
    {
        MainWindow main(fourTasks);
        main.clickRow(QStringLiteral("banana"));
        main.clickHeader(3);
        QCOMPARE(main.shown(), QStringLiteral("apple banana cherry"));
        main.clickHeader(3);
        QCOMPARE(main.shown(), QStringLiteral("cherry banana apple"));
        QCOMPARE(main.table().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
        QCOMPARE(main.selectedName(), QStringLiteral("banana"));
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
        main.click("deleteButton");
        QCOMPARE(main.saved(), QStringLiteral("date cherry apple"));
    }

    void losesTheOrderOfSearchResultsWithTheSearch()
    {
        MainWindow main(fourTasks);
        QTest::keyClicks(&main.searchField(), QStringLiteral("a"));
        main.clickHeader(3);
        main.clickHeader(3);
        QCOMPARE(main.shown(), QStringLiteral("cherry banana apple"));
        main.searchField().clear();
        QCOMPARE(main.shown(), QStringLiteral("apple banana cherry"));
    }

    void worksFromTheKeyboardAlone()
    {
        MainWindow main(fourTasks);
        QTest::keyClick(main.window.get(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&main.searchField(), QStringLiteral("a"));
        QTest::keyClick(&main.searchField(), Qt::Key_Return);
        QCOMPARE(main.selectedName(), QStringLiteral("apple"));
        QTest::keyClick(&main.table(), Qt::Key_Down);
        QCOMPARE(main.selectedName(), QStringLiteral("banana"));
        QTest::keyClick(&main.table(), Qt::Key_Delete);
        QCOMPARE(main.saved(), QStringLiteral("apple cherry date"));
        QTest::keyClick(&main.table(), Qt::Key_Space);
        QCOMPARE(main.selectedName(), QStringLiteral("cherry"));
        QTest::keyClick(main.window.get(), Qt::Key_7, Qt::ControlModifier);
        QCOMPARE(main.views().currentText(), QStringLiteral("Global-All"));
    }

    void followsTheAppearance_data()
    {
        QTest::addColumn<QString>("term");
        QTest::addColumn<bool>("saveFails");
        QTest::newRow("the whole list") << "" << false;
        QTest::newRow("during a search") << "pp" << false;
        QTest::newRow("after a save that failed") << "" << true;
        QTest::newRow("during a search after a save that failed") << "pp" << true;
    }

    void followsTheAppearance()
    {
        QFETCH(QString, term);
        QFETCH(bool, saveFails);
        MainWindow main({{.name = "apple", .color = "0.25|0.1|0.0|0.5"}, {.name = "pear", .date = "3/8/26"}});
        QTest::keyClicks(&main.searchField(), term);
        if (saveFails) {
            main.clickRow(QStringLiteral("apple"));
            QFile::remove(main.home.listPath());
            QVERIFY(QDir().mkdir(main.home.listPath()));
            main.click("cloneButton");
            QVERIFY(main.status().contains(QStringLiteral("could not be saved")));
        }
        const auto all = main.store.fullList().size();
        main.appearance.setInterfaceStyle(QStringLiteral("Dark"));
        QCOMPARE(main.store.fullList().size(), all);
        QVERIFY(main.store.tasks().first().color == Color(0.75, 0.9, 1, 0.5));
        main.appearance.setInterfaceStyle(std::nullopt);
        QVERIFY(main.store.tasks().first().color == Color(0.25, 0.1, 0, 0.5));
        if (!saveFails)
            QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
        main.searchField().clear();
        QCOMPARE(main.store.tasks().size(), all);
    }

    void takesInWhatOthersChange()
    {
        MainWindow main(fourTasks);
        QTest::keyClicks(&main.searchField(), QStringLiteral("fig"));
        main.store.addTask({}, QDateTime::currentDateTime(), QStringLiteral("fig"), {}, Color(),
                           QDateTime::currentDateTime(), 0, 0, {}, {}, false, 8, 0, 9, 0, {}, {});
        main.notifications.post(QStringLiteral("reload"));
        QCOMPARE(main.shown(), QStringLiteral("fig"));
        QCOMPARE(main.saved(), QStringLiteral("apple banana cherry date fig"));
        main.store.setLastMessage(QStringLiteral("-iCloud:Update Complete!-"));
        main.notifications.post(QStringLiteral("update"));
        QCOMPARE(main.status(), QStringLiteral("-iCloud:Update Complete!-"));
    }

    void saysWhatIsBecomingOfRowsThatCannotBeRead()
    {
        MainWindow main({});
        TemporaryHome::write(main.home.listPath(), "broken|row^" + Row{.name = "apple"}.bytes());
        main.appearance.setInterfaceStyle(QStringLiteral("Dark"));
        QVERIFY2(main.status().startsWith(QStringLiteral("1 row of ltodolist.txt cannot be read.")),
                 qPrintable(main.status()));
        main.clickRow(QStringLiteral("apple"));
        main.click("cloneButton");
        const QString kept = main.documents.file(QStringLiteral("ltodolist.txt"))->asidePath();
        QVERIFY(main.status().contains(kept));
        QVERIFY(TemporaryHome::content(kept).contains("broken|row^"));
    }

    void asksTheApplicationToEndWhenItIsClosed()
    {
        MainWindow main({});
        QSignalSpy ended(main.window.get(), &ViewController::terminationRequested);
        QVERIFY(main.window->close());
        QCOMPARE(ended.size(), 1);
    }

    void canBeReadByAScreenReaderAtAnyTime()
    {
        QAccessible::setActive(true);
        MainWindow main(fourTasks);
        const std::function<int(QAccessibleInterface *)> countNamed = [&](QAccessibleInterface *node) {
            int named = node->text(QAccessible::Name).isEmpty() ? 0 : 1;
            for (int i = 0; i < node->childCount(); ++i) {
                if (QAccessibleInterface *child = node->child(i))
                    named += countNamed(child);
            }
            return named;
        };
        QAccessibleInterface *table = QAccessible::queryAccessibleInterface(&main.table());
        QVERIFY(table->tableInterface());
        QVERIFY(!table->tableInterface()->cellAt(-1, -1));
        const int before = countNamed(table);
        QVERIFY2(before >= 3 * 9, qPrintable(QString::number(before)));
        main.clickRow(QStringLiteral("banana"));
        main.click("deleteButton");
        QVERIFY(countNamed(table) < before);
        QAccessible::setActive(false);
    }

    void namesEveryControlForAScreenReader()
    {
        MainWindow main(fourTasks);
        for (const QWidget *widget : main.window->findChildren<QWidget *>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible())
                continue;
            QAccessibleInterface *node = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
            QVERIFY2(!node->text(QAccessible::Name).isEmpty(),
                     qPrintable(widget->objectName() + QLatin1String(widget->metaObject()->className())));
        }
    }
};

OBLINO_TEST(tst_mainwindow, QApplication)

#include "tst_mainwindow.moc"
