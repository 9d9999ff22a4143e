#include "mainwindowfixture.h"

#include <controls/datefield.h>
#include <ui/tabletexts.h>

using Deeds = Table<std::function<void(MainWindow &)>>;

namespace {

const QList<Row> someTasks = {{.name = "apple", .date = "3/1/26"},
                              {.name = "banana", .date = "3/2/26"},
                              {.name = "cherry", .date = "3/3/26"}};

void press(const MainWindow &main, const char *keys)
{
    QTest::keySequence(&main.table(), QKeySequence(QLatin1String(keys)));
}

} // namespace

/// The table of the main window: what is selected in it, how keys move in it, and what it follows.
class tst_tasktable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandsKeepToATaskThatIsSeenSelected_data()
    {
        const Deeds row;
        row("hidden", [](MainWindow &main) { main.click("hideButton"); });
        row("in another view", [](MainWindow &main) { main.views().setCurrentIndex(2); });
        row("out of a search", [](MainWindow &main) { QTest::keyClicks(&main.searchField(), u"cherry"_s); });
        row("removed by another program", [](MainWindow &main) {
            main.setFile(listOf({someTasks.first(), someTasks.last()}));
            QTRY_COMPARE(main.shown(), u"apple cherry"_s);
        });
        row("the cloud's last", [](MainWindow &main) { main.store.setSelected(u"KEY-apple"_s); });
    }
    void commandsKeepToATaskThatIsSeenSelected()
    {
        const auto [deed] = Deeds::cells();
        MainWindow main(someTasks);
        main.clickRow(u"banana"_s);
        deed(main);
        const QByteArray before = main.file();
        QGuiApplication::clipboard()->setText(u"before"_s);
        for (const char *keys : {"Return", "Enter", "F2", "Ctrl+E", "Del", "Ctrl+H", "Ctrl+K", "Ctrl+D",
                                 "Ctrl+C", "Ctrl+Shift+C", "Ctrl+Shift+S", "Ctrl+Up"})
            press(main, keys);
        main.window->doubleClickTable();
        main.window->hideClicked();
        main.window->btnDeleteTask_Click(nullptr);
        main.window->cloneTask(nullptr);
        main.window->closeTask(nullptr);
        main.views().setCurrentIndex(6);
        main.window->downer();
        QVERIFY(!main.window->findChild<QDialog *>());
        QCOMPARE(main.questions.asked.last().informativeText, u"Select a Task."_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_s);
        QCOMPARE(main.file(), before);
    }

    void isNotLeftWithNothingSelectedAndCopiesAndEditsByKey()
    {
        const MainWindow main(someTasks);
        press(main, "End");
        clickCell(main.table(), 2, 3, Qt::ControlModifier);
        QCOMPARE(main.selectedName(), u"cherry"_s);
        press(main, "Ctrl+Space");
        press(main, "Ctrl+C");
        QVERIFY(QGuiApplication::clipboard()->text().contains(u"\n\nSchedule: cherry\nStart Date: "_s));
        QCOMPARE(main.status(), u"Copied “cherry” as text."_s);
        press(main, "F2");
        QCOMPARE(find<QLineEdit>(*main.window->findChild<QDialog *>(), "txtTaskName").text(), u"cherry"_s);
    }

    void findsANameAsItIsTyped()
    {
        for (const auto &[typed, name] : {std::pair(u"BETA t"_s, u"beta two"_s),
                                          {u"bb"_s, u"beta two"_s}, // one letter again goes on
                                          {u"bbb"_s, u"Beta"_s},    // and round
                                          {u"É"_s, u"e\u0301clair"_s},
                                          {u"οδος"_s, u"ΟΔΟΣ"_s},
                                          {u"two"_s, u"alpha"_s}}) { // only beginnings count
            const MainWindow main({{.name = "alpha", .date = "3/1/26"},
                                   {.name = "Beta", .date = "3/2/26"},
                                   {.name = "beta two", .date = "3/3/26"},
                                   {.name = "e\u0301clair", .date = "3/4/26"},
                                   {.name = "ΟΔΟΣ", .date = "3/5/26"}});
            press(main, "Space");
            for (const QChar letter : typed)
                QTest::sendKeyEvent(QTest::Click, &main.table(), Qt::Key_unknown, QString(letter), {});
            QCOMPARE(main.selectedName(), name);
        }
    }

    void movesOnWithTheDay()
    {
        // Between these zones it is never the same day.
        const auto day = [] { return QDate::currentDate().toString(u"M/d/yy"_s).toUtf8(); };
        const TimeZone west("WST12");
        QByteArray list = Row{.name = "yesterday"}.bytes().replace("3/9/26", day());
        const TimeZone east("EST-14");
        list += Row{.name = "always", .status = 8}.bytes();
        list += Row{.name = "today"}.bytes().replace("3/9/26", day());
        std::optional<TimeZone> back("WST12");
        MainWindow main(list);
        main.views().setCurrentIndex(9);
        QCOMPARE(main.shown(), u"yesterday always"_s);
        main.clickRow(u"always"_s);
        find<QAction>(*main.window, "newTaskAction").trigger();
        back.reset();
        main.notifications.post(u"dayChanged"_s);
        QCOMPARE(main.shown(), u"always today"_s);
        QCOMPARE(main.selectedName(), u"always"_s);
        QCOMPARE(find<DateField>(*main.window, "dtTaskDate").date(), QDate::currentDate());
        QCOMPARE(main.file(), list);
    }

    void leadsToATaskThatIsAdded()
    {
        MainWindow main(QList<Row>(100, Row{.name = "one"}));
        const auto add = [&main](const QString &name) {
            main.store.addTask({.key = name, .name = name});
            main.notifications.post(u"reload"_s);
        };
        add(u"fence"_s);
        QVERIFY(main.table().viewport()->rect().intersects(
            main.table().visualRect(main.table().model()->index(100, 3))));
        QCOMPARE(main.selectedName(), QString());
        QCOMPARE(main.status(), u"Added “fence”."_s);
        main.views().setCurrentIndex(2);
        add(u"gate"_s);
        QCOMPARE(main.status(), u"Added “gate” to Open; this view shows Closed."_s);
        QVERIFY(main.saved().endsWith(u"one fence gate"_s));
        main.notifications.post(u"update"_s);
        main.window->interfaceModeChanged();
        QCOMPARE(main.status(), QString());
    }

    void tellsWhereAnAddedTaskIs()
    {
        const auto told = [](int status, bool hidden, int view, const QString &term) {
            const QDate due(2024, 3, 7);
            const task t = {.name = u"fence"_s, .due = due.startOfDay(), .status = status, .hidden = hidden};
            return addedText({t}, view, term, due.addDays(1));
        };
        QCOMPARE(told(1, false, 1, {}), u"Added “fence” to Closed; this view shows Open."_s);
        QCOMPARE(told(2, false, 9, {}), u"Added “fence” to All; this view shows Due Today."_s);
        QCOMPARE(told(0, true, 0, {}), u"Added “fence” to Hidden Open; this view shows All."_s);
        QCOMPARE(told(0, false, 1, u"x"_s), u"Added “fence” to Open; it does not match the search."_s);
        QCOMPARE(addedText({task(), task()}, 0, {}, {}), u"Added 2 tasks."_s);
    }

    void tracesARowOnceAReload()
    {
        const MainWindow main(someTasks);
        const QByteArray traces = tracesOf([&main] {
            main.views().setCurrentIndex(1);
            for (int paint = 0; paint < 2; ++paint)
                main.table().viewport()->repaint();
        });
        QCOMPARE(traces.count("\nRow: 2\n"), 1);
    }
};

OBLINO_TEST(tst_tasktable, QApplication)

#include "tst_tasktable.moc"
