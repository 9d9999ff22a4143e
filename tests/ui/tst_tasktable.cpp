#include "mainwindowfixture.h"

using Deed = std::function<void(const MainWindow &)>;
using Deeds = Table<Deed>;
using Searches = Table<QString, const char *>;

namespace {

const QList<Row> someTasks = {{.name = "apple", .date = "3/1/26"},
                              {.name = "banana", .date = "3/2/26"},
                              {.name = "cherry", .date = "3/3/26"}};

void press(const MainWindow &main, const char *keys)
{
    QTest::keySequence(&main.table(), QKeySequence(QLatin1String(keys)));
}

QString clipboard()
{
    return QGuiApplication::clipboard()->text();
}

void addTask(MainWindow &main, const QString &name)
{
    const QDateTime moment = QDateTime::currentDateTime();
    main.store.addTask({}, moment, name, {}, Color(), moment, 0, 0, {}, {}, false, 8, 0, 9, 0, {}, {});
    main.notifications.post(u"reload"_s);
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
        row("hidden", [](const MainWindow &main) { main.click("hideButton"); });
        row("deleted", [](const MainWindow &main) { main.click("deleteButton"); });
        row("cloned", [](const MainWindow &main) { main.click("cloneButton"); });
        row("in another view", [](const MainWindow &main) { main.views().setCurrentIndex(2); });
        row("out of a search",
            [](const MainWindow &main) { QTest::keyClicks(&main.searchField(), u"cherry"_s); });
        row("removed by another program", [](const MainWindow &main) {
            TemporaryHome::write(main.home.listPath(), someTasks.first().bytes() + someTasks.last().bytes());
            QTRY_COMPARE(main.shown(), u"apple cherry"_s);
        });
        row("the cloud's last", [](const MainWindow &main) {
            const_cast<MainWindow &>(main).store.setSelected(u"KEY-apple"_s);
            const_cast<MainWindow &>(main).notifications.post(u"reload"_s);
        });
    }
    void commandsKeepToATaskThatIsSeenSelected()
    {
        const auto [deed] = Deeds::cells();
        const MainWindow main(someTasks);
        main.clickRow(u"banana"_s);
        deed(main);
        const QByteArray before = TemporaryHome::content(main.home.listPath());
        QGuiApplication::clipboard()->setText(u"before"_s);
        for (const char *keys : {"Return", "Enter", "F2", "Ctrl+E", "Del", "Ctrl+H", "Ctrl+K", "Ctrl+D",
                                 "Ctrl+C", "Ctrl+Shift+C", "Ctrl+Shift+S", "Ctrl+Up"})
            press(main, keys);
        main.window->doubleClickTable();
        main.window->hideClicked();
        main.window->btnDeleteTask_Click(nullptr);
        main.window->cloneTask(nullptr);
        main.window->closeTask(nullptr);
        main.window->downer();
        QVERIFY(!main.window->findChild<QDialog *>());
        QCOMPARE(clipboard(), u"before"_s);
        QCOMPARE(TemporaryHome::content(main.home.listPath()), before);
    }

    void copiesAndEditsByKey()
    {
        const MainWindow main(someTasks);
        main.clickRow(u"banana"_s);
        press(main, "Ctrl+C");
        QVERIFY2(clipboard().contains(u"\n\nSchedule: banana\nStart Date: "_s), qPrintable(clipboard()));
        QCOMPARE(main.status(), u"Copied “banana” as text."_s);
        press(main, "F2");
        auto *form = main.window->findChild<QDialog *>();
        QVERIFY(form);
        QCOMPARE(find<QLineEdit>(*form, "txtTaskName").text(), u"banana"_s);
    }

    void movesOnWithTheDay()
    {
        // Between these zones it is never the same day.
        const TimeZone west("WST12");
        const auto due = [](const char *name, int status) {
            const QByteArray day = QDate::currentDate().toString(u"M/d/yy"_s).toUtf8();
            return Row{.name = name, .status = status}.bytes().replace("3/9/26", day);
        };
        MainWindow main({});
        QByteArray list = due("yesterday", 0);
        const TimeZone east("EST-14");
        list += due("today", 0) + Row{.name = "always", .status = 8}.bytes();
        TemporaryHome::write(main.home.listPath(), list);
        {
            const TimeZone back("WST12");
            QTRY_COMPARE(main.shown(), u"yesterday today always"_s);
            main.views().setCurrentIndex(9);
            QCOMPARE(main.shown(), u"yesterday always"_s);
            main.clickRow(u"always"_s);
        }
        main.notifications.post(u"dayChanged"_s);
        QCOMPARE(main.shown(), u"today always"_s);
        QCOMPARE(main.selectedName(), u"always"_s);
        QCOMPARE(TemporaryHome::content(main.home.listPath()), list);
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
