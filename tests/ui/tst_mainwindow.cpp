#include "mainwindowfixture.h"

#include <controls/messageboxalert.h>

using Changes = Table<const char *, int, const char *, const char *, QString, QString>;

namespace {

const QList<Row> fourTasks = {
    {.name = "cherry", .date = "3/9/26", .client = "Acme Ltd"},
    {.name = "apple", .date = "3/7/26", .status = 1},
    {.name = "banana", .date = "3/8/26", .client = "Harbor Cafe"},
    {.name = "date", .date = "3/10/26", .hidden = true},
};

constexpr int globalAll = 6;

} // namespace

class tst_mainwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsSortedByDateWithElevenColumns()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        const MainWindow main({{.name = "b", .date = "3/8/26"},
                               {.name = "a", .date = "3/7/26", .client = "Acme", .desc = "one\ntwo"}});
        QStringList row;
        for (int column = 0; column < main.table().model()->columnCount(); ++column)
            row += main.cell(0, column);
        QCOMPARE(row.join(u'|'), u"3/7/26|09:30|17:00|a|Acme|Dana|one...|Open|High|3/9/26|KEY-a"_s);
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
    }

    void searchesAsOneTypesUntilTheFieldIsEmptied()
    {
        MainWindow main(fourTasks);
        QTest::keyClick(main.window.get(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(main.searchField().hasFocus());
        for (const bool byKey : {true, false}) {
            QTest::keyClicks(&main.searchField(), u"ACME"_s);
            QCOMPARE(main.shown(), u"cherry"_s);
            if (byKey)
                QTest::keyClick(&main.searchField(), Qt::Key_Escape);
            else
                QTest::mouseClick(main.searchField().findChildren<QToolButton *>().last(), Qt::LeftButton);
            QCOMPARE(main.shown(), u"apple banana cherry"_s);
        }
    }

    void changesTheListAndTheFile_data()
    {
        // the search term, the view, whom to select, what to press, what is shown, what is saved
        const Changes row;
        const QString all = u"apple banana cherry date"_s;
        row("delete", "", 0, "banana", "deleteButton", u"apple cherry"_s, u"apple cherry date"_s);
        row("delete in a search", "banan", 0, "banana", "deleteButton", {}, u"apple cherry date"_s);
        row("hide in a search", "a", 0, "banana", "hideButton", u"apple cherry"_s, all);
        row("clone goes to the end", "", 0, "apple", "cloneButton", u"apple banana cherry apple"_s,
            all + u" apple"_s);
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
        QCOMPARE(said("upperButton"), u"Change to Global-All View to order Tasks."_s);
        QCOMPARE(said("downerButton"), u"Change to the Global-All View to order Tasks."_s);
        main.views().setCurrentIndex(globalAll);
        QCOMPARE(said("upperButton"), u"Select a Task."_s);
        main.clickRow(u"date"_s);
        QCOMPARE(main.button("hideButton").toolTip(), u"UNHIDE"_s);
        QCOMPARE(said("hideButton"), u""_s);
        QCOMPARE(main.button("hideButton").toolTip(), u"HIDE"_s);
        for (const QString &expected : {u""_s, u"Task already closed"_s}) {
            main.clickRow(u"banana"_s);
            QCOMPARE(said("closeButton"), expected);
            QCOMPARE(main.cell(1, 7), u"Closed"_s);
        }
        main.clickRow(u"banana"_s);
        main.click("deleteButton");
        main.questions.asked.clear();
        QCOMPARE(said("downerButton"), u"Select a Task."_s);
        QCOMPARE(main.saved(), u"apple cherry date"_s);
    }

    void answersOnlyWhatWasPressed()
    {
        // In an event loop of the application's, as in the program.
        const auto answerTo = [this](const std::function<void(QMessageBox *)> &press) {
            std::optional<int> answer = -2;
            QTimer::singleShot(0, this, [&] {
                QTimer::singleShot(0, this, [&press] {
                    press(qobject_cast<QMessageBox *>(QApplication::activeModalWidget()));
                });
                answer = MessageBoxAlert().ask({u"<b>?</b>"_s, {}, {u"Yes"_s, u"No"_s}, 1});
                QCoreApplication::exit(0);
            });
            QApplication::exec();
            return answer;
        };
        QCOMPARE(answerTo([](auto *box) { QTest::mouseClick(box->buttons().at(0), Qt::LeftButton); }), 0);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape})
            QCOMPARE(answerTo([key](auto *box) { QTest::keyClick(box, key); }), 1);
        QCOMPARE(answerTo([](auto *) { QCoreApplication::exit(0); }), std::nullopt);
    }

    void deletesOnlyOnAnExplicitYes()
    {
        for (const std::optional<int> answer : {std::optional(1), std::optional<int>()}) {
            MainWindow main(fourTasks);
            main.questions.answer = answer;
            main.clickRow(u"banana"_s);
            main.click("deleteButton");
            const Alert::Question asked = main.questions.asked.value(0);
            QCOMPARE(asked.messageText, u"The task will be deleted locally as well as from the iCloud if "
                                        "present. Are you sure you want to delete ?"_s);
            QCOMPARE(asked.informativeText, u"banana"_s);
            QCOMPARE(asked.buttons, QStringList({u"Yes"_s, u"No"_s}));
            QCOMPARE(main.saved(), u"apple banana cherry date"_s);
        }
    }

    void deletesTheTaskItAskedAboutThoughTheListChangedMeanwhile()
    {
        MainWindow main(fourTasks);
        main.clickRow(u"banana"_s);
        main.questions.whileAsked = [&main] {
            main.store.setTasks(main.store.tasks().sliced(1));
            main.notifications.post(u"reload"_s);
        };
        main.click("deleteButton");
        QCOMPARE(main.saved(), u"cherry date"_s);
    }

    void sortsByAHeaderWithoutSavingAndKeepsTheSelection()
    {
        MainWindow main(fourTasks);
        main.clickRow(u"banana"_s);
        clickHeader(main.table(), 3);
        QCOMPARE(main.shown(), u"apple banana cherry"_s);
        clickHeader(main.table(), 3);
        QCOMPARE(main.shown(), u"cherry banana apple"_s);
        QCOMPARE(main.table().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
        QCOMPARE(main.selectedName(), u"banana"_s);
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
        main.click("deleteButton");
        QCOMPARE(main.saved(), u"date cherry apple"_s);
    }

    void worksFromTheKeyboardAlone()
    {
        MainWindow main(fourTasks);
        QTest::keyClick(main.window.get(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&main.searchField(), u"a"_s);
        QTest::keyClick(&main.searchField(), Qt::Key_Return);
        QCOMPARE(main.selectedName(), u"apple"_s);
        QTest::keyClick(&main.table(), Qt::Key_Down);
        QTest::keyClick(&main.table(), Qt::Key_Delete);
        QCOMPARE(main.saved(), u"apple cherry date"_s);
        QTest::keyClick(&main.table(), Qt::Key_Space);
        QCOMPARE(main.selectedName(), u"cherry"_s);
        QTest::keyClick(main.window.get(), Qt::Key_7, Qt::ControlModifier);
        QCOMPARE(main.views().currentText(), u"Global-All"_s);
    }

    void saysWhatIsBecomingOfRowsThatCannotBeRead()
    {
        MainWindow main({});
        TemporaryHome::write(main.home.listPath(), "broken|row^" + Row{.name = "apple"}.bytes());
        main.interfaceChange();
        QVERIFY2(main.notice().contains(u"1 row of ltodolist.txt cannot be read."_s),
                 qPrintable(main.notice()));
        main.clickRow(u"apple"_s);
        main.click("cloneButton");
        QVERIFY(main.home.kept().contains("broken|row^"));
        QVERIFY2(main.notice().contains(main.home.privateFolder()), qPrintable(main.notice()));
    }

    void canBeReadByAScreenReader()
    {
        QAccessible::setActive(true);
        const MainWindow main(fourTasks);
        for (QWidget *widget : main.window->findChildren<QWidget *>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible())
                continue;
            const QAccessibleInterface *node = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(!node->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        }
        QVERIFY(!QAccessible::queryAccessibleInterface(&main.table())->tableInterface()->cellAt(-1, -1));
        QAccessible::setActive(false);
    }
};

OBLINO_TEST(tst_mainwindow, QApplication)

#include "tst_mainwindow.moc"
