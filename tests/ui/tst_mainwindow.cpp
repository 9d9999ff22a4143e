#include "mainwindowfixture.h"

#include <support/table.h>
#include <support/testmain.h>

#include <controls/messageboxalert.h>

#include <QSignalSpy>

#include <functional>

using namespace oblino;
using Changes = Table<const char *, int, const char *, const char *, QString, QString>;
using Presses = Table<std::function<void(QMessageBox *)>, std::optional<int>>;
using Refusals = Table<int, bool, const char *, QString>;

namespace {

const QList<Row> fourTasks = {
    {.name = "cherry", .date = "3/9/26", .client = "Acme Ltd"},
    {.name = "apple", .date = "3/7/26", .status = 1},
    {.name = "banana", .date = "3/8/26", .client = "Harbor Cafe"},
    {.name = "date", .date = "3/10/26", .hidden = true},
};

constexpr int globalAll = 6;

/// Which of the buttons for a task are enabled.
QString enabled(const MainWindow &main)
{
    QStringList names;
    for (const char *name : {"edit", "delete", "hide", "share", "clone", "close"}) {
        if (main.button((QByteArray(name) + "Button").constData()).isEnabled())
            names += QLatin1String(name);
    }
    return names.join(u' ');
}

} // namespace

class tst_mainwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmptyWithNothingToCommand()
    {
        const MainWindow main({});
        QCOMPARE(main.shown(), QString());
        QCOMPARE(enabled(main), QString());
        QVERIFY(main.window->findChild<QLabel *>(u"emptyTitle"_s)->isVisible());
        QVERIFY(!QFile::exists(main.home.listPath()));
    }

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

    void showsTheChosenView()
    {
        MainWindow main(fourTasks);
        main.clickRow(u"apple"_s);
        QTest::keyClicks(&main.views(), u"c"_s);
        QCOMPARE(main.shown(), u"apple"_s);
        QCOMPARE(enabled(main), QString());
        main.views().setFocus();
        QTest::keyClick(&main.views(), Qt::Key_Down);
        QTest::keyClick(&main.views(), Qt::Key_Down);
        QCOMPARE(main.shown(), u"date"_s);
        QCOMPARE(main.views().currentText(), u"Hidden Open"_s);
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

    void enablesCommandsOnlyForATaskThatIsSelectedAndShown()
    {
        MainWindow main(fourTasks);
        main.clickRow(u"banana"_s);
        const QString all = u"edit delete hide share clone close"_s;
        QCOMPARE(enabled(main), all);
        QTest::keyClicks(&main.searchField(), u"ban"_s);
        QCOMPARE(main.selectedName(), u"banana"_s);
        QCOMPARE(enabled(main), all);
        QTest::keyClicks(&main.searchField(), u"x"_s);
        QCOMPARE(enabled(main), QString());
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

    void refusesToMove_data()
    {
        const Refusals row;
        row("up elsewhere", 0, true, "upperButton", u"Change to Global-All View to order Tasks."_s);
        row("down elsewhere", 0, true, "downerButton", u"Change to the Global-All View to order Tasks."_s);
        row("nothing selected", globalAll, false, "upperButton", u"Select a Task."_s);
        row("the selected task is gone", globalAll, true, "downerButton", u"Select a Task."_s);
    }

    void refusesToMove()
    {
        const auto [view, selects, button, message] = Refusals::cells();
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(view);
        if (selects)
            main.clickRow(u"banana"_s);
        if (selects && view == globalAll)
            main.click("deleteButton");
        const QString before = main.shown();
        main.click(button);
        QCOMPARE(main.questions.asked.last().informativeText, message);
        QCOMPARE(main.questions.asked.last().buttons, QStringList(u"OK"_s));
        QCOMPARE(main.shown(), before);
    }

    void showsWhetherTheSelectedTaskIsHidden()
    {
        MainWindow main(fourTasks);
        main.views().setCurrentIndex(globalAll);
        main.clickRow(u"date"_s);
        QCOMPARE(main.button("hideButton").toolTip(), u"UNHIDE"_s);
        main.click("hideButton");
        QCOMPARE(main.button("hideButton").toolTip(), u"HIDE"_s);
        QVERIFY(!main.store.tasks().last().hidden);
    }

    void closesATaskOnce()
    {
        MainWindow main(fourTasks);
        for (int time = 0; time < 2; ++time) {
            main.clickRow(u"banana"_s);
            main.click("closeButton");
            QCOMPARE(main.cell(1, 7), u"Closed"_s);
            QCOMPARE(main.questions.asked.size(), time);
        }
        QCOMPARE(main.questions.asked.last().informativeText, u"Task already closed"_s);
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

    void answersOnlyWhatWasPressed_data()
    {
        const Presses row;
        row(
            "Yes by mouse", [](QMessageBox *box) { QTest::mouseClick(box->buttons().at(0), Qt::LeftButton); },
            0);
        row(
            "Return takes the harmless one", [](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Return); },
            1);
        row(
            "Escape too", [](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); }, 1);
        row(
            "the event loop ends", [](QMessageBox *) { QCoreApplication::exit(0); }, std::nullopt);
    }

    void answersOnlyWhatWasPressed()
    {
        const auto [press, expected] = Presses::cells();
        std::optional<int> answer = -2;
        // In an event loop of the application's, as in the program.
        QTimer::singleShot(0, this, [&, press = press] {
            QTimer::singleShot(
                0, this, [&press] { press(qobject_cast<QMessageBox *>(QApplication::activeModalWidget())); });
            answer = MessageBoxAlert().ask({u"<b>?</b>"_s, {}, {u"Yes"_s, u"No"_s}, 1});
            QCoreApplication::exit(0);
        });
        QApplication::exec();
        QCOMPARE(answer, expected);
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

    void followsTheAppearanceDuringASearch()
    {
        for (const bool saveFails : {false, true}) {
            MainWindow main({{.name = "apple", .color = "0.25|0.1|0.0|0.5"}, {.name = "pear"}});
            QTest::keyClicks(&main.searchField(), u"pp"_s);
            if (saveFails) {
                main.clickRow(u"apple"_s);
                QFile::remove(main.home.listPath());
                QVERIFY(QDir().mkdir(main.home.listPath()));
                main.click("cloneButton");
                QVERIFY(main.notice().contains(u"could not be saved"_s));
            }
            main.appearance.setInterfaceStyle(u"Dark"_s);
            QVERIFY(main.store.tasks().first().color == Color(0.75, 0.9, 1, 0.5));
            main.appearance.setInterfaceStyle(std::nullopt);
            QVERIFY(main.store.tasks().first().color == Color(0.25, 0.1, 0, 0.5));
            if (!saveFails)
                QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
            main.searchField().clear();
            QCOMPARE(main.store.tasks().size(), saveFails ? 3 : 2);
        }
    }

    void takesInWhatOthersChange()
    {
        MainWindow main(fourTasks);
        QTest::keyClicks(&main.searchField(), u"fig"_s);
        main.store.addTask({}, QDateTime::currentDateTime(), u"fig"_s, {}, Color(),
                           QDateTime::currentDateTime(), 0, 0, {}, {}, false, 8, 0, 9, 0, {}, {});
        main.notifications.post(u"reload"_s);
        QCOMPARE(main.shown(), u"fig"_s);
        QCOMPARE(main.saved(), u"apple banana cherry date fig"_s);
        main.store.setLastMessage(u"-iCloud:Update Complete!-"_s);
        main.notifications.post(u"update"_s);
        QCOMPARE(main.status(), u"-iCloud:Update Complete!-"_s);
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
        const QList<EarlierVersion> kept = main.documents.versions(u"ltodolist.txt"_s).list();
        QVERIFY(!kept.isEmpty() && kept.first().reason == VersionReason::Quarantined);
        QVERIFY(main.notice().contains(kept.first().path));
        QCOMPARE(TemporaryHome::content(kept.first().path), "broken|row^");
    }

    void asksTheApplicationToEndWhenItIsClosed()
    {
        const MainWindow main({});
        const QSignalSpy ended(main.window.get(), &ViewController::terminationRequested);
        QVERIFY(main.window->close());
        QCOMPARE(ended.size(), 1);
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
