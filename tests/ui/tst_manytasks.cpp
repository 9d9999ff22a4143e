#include "mainwindowfixture.h"

#include <core/namedfilters.h>
#include <ui/windows/tasktable.h>

namespace {

QByteArray inFile(QDate day)
{
    return day.toString(u"M/d/yy"_s).toUtf8();
}

// Selects tasks by their names, the last as the current one.
void selectRows(const MainWindow &main, const QStringList &names)
{
    Qt::KeyboardModifiers keys;
    for (const QString &name : names) {
        clickCell(main.table(), static_cast<int>(main.shown().split(u' ').indexOf(name)), 3, keys);
        keys = Qt::ControlModifier;
    }
}

void answerNext(const MainWindow &main, const char *dialog, const QString &text)
{
    auto &box = find<QInputDialog>(*main.window, dialog);
    box.inputMode() == QInputDialog::IntInput ? box.setIntValue(text.toInt()) : box.setTextValue(text);
    box.accept();
}

} // namespace

/// Several tasks at once, their order, and what the day makes of them.
class tst_manytasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesSeveralTasksAsOneStep_data()
    {
        const auto trigger = [](const char *action) {
            return [action](MainWindow &main) { find<QAction>(*main.window, action).trigger(); };
        };
        const auto answer = [trigger](const char *action, const char *dialog, const QString &text) {
            return [=](MainWindow &main) {
                trigger(action)(main);
                answerNext(main, dialog, text);
            };
        };
        // what is done, and what becomes of the rows of a and c
        const Table<std::function<void(MainWindow &)>, QByteArrayList> row;
        row("hide", trigger("hideAction"), {"|false|", "|true|"});
        row("close", trigger("closeAction"), {"|0|2|Open|", "|1|2|Closed|"});
        row("client", answer("clientOfAction", "changeName", u"Ørsted ٣"_s), {"|0|Acme|", "|0|Ørsted ٣|"});
        row("team member", answer("teamMemberOfAction", "changeName", u"李"_s), {"|Dana^", "|李^"});
        row("days, over a change of the clocks", answer("daysAction", "moveByDays", u"21"_s),
            {"3/7/26|", "3/28/26|", "3/9/26|", "3/30/26|"});
        row("days, too far", answer("daysAction", "moveByDays", u"-40000"_s), {});
        row("deleted", trigger("deleteAction"), {"delete"});
    }
    void changesSeveralTasksAsOneStep()
    {
        const auto [act, replaced] = Table<std::function<void(MainWindow &)>, QByteArrayList>::cells();
        MainWindow main({{.name = "a", .client = "Acme"}, {.name = "b"}, {.name = "c", .client = "Acme"}});
        selectRows(main, {u"a"_s, u"c"_s});
        act(main);
        QByteArrayList rows = main.listAtStart.split('^');
        for (const int place : {2, 0}) {
            QByteArray row = rows.at(place) + '^';
            for (int i = 0; i + 1 < replaced.size(); i += 2)
                row.replace(replaced.at(i), replaced.at(i + 1));
            rows[place] = row.chopped(1);
            if (replaced == QByteArrayList{"delete"})
                rows.removeAt(place);
        }
        QCOMPARE(main.file(), rows.join('^'));
        if (replaced == QByteArrayList{"delete"})
            QVERIFY(main.questions.asked.value(0).messageText.startsWith(u"2 tasks will be deleted"_s));
        find<QAction>(*main.window, "undoAction").trigger();
        QCOMPARE(main.file(), main.listAtStart);
    }

    void repeatsATask()
    {
        QLocale::setDefault(QLocale(u"de_DE"_s));
        MainWindow main({{.name = "a", .date = "3/7/26", .status = 1}}); // a Saturday
        main.clickRow(u"a"_s);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Shift+D"_s));
        auto &window = find<QDialog>(*main.window, "RepeatWindow");
        QTRY_COMPARE(QApplication::activeWindow(), &window);
        QTest::keyClick(&find<QCheckBox>(window, "weekday1"), Qt::Key_Space); // Mondays as well
        type(find<QWidget>(window, "until"), u"29.03.2026"_s); // where the clocks change in Europe
        auto &preview = find<QListWidget>(window, "preview");
        QCOMPARE(preview.count(), 6);
        QCOMPARE(preview.item(0)->text(), u"Montag, 9. März 2026"_s);
        QCOMPARE(find<QLabel>(window, "summary").text(), u"6 copies, the last on Samstag, 28. März 2026"_s);
        QTest::keyClick(&preview, Qt::Key_Down);
        QTest::keyClick(&preview, Qt::Key_Space); // not on the second
        click(window, "repeatButton");
        QByteArrayList days;
        for (const QByteArray &row : main.file().split('^'))
            days += row.split('|').value(0) + ' ' + row.split('|').value(7) + ' ' + row.split('|').value(10);
        QCOMPARE(days.join(','),
                 "3/7/26 3/9/26 Closed,3/9/26 3/11/26 Open,3/16/26 3/18/26 Open,3/21/26 3/23/26 "
                 "Open,3/23/26 3/25/26 Open,3/28/26 3/30/26 Open,  ");
        find<QAction>(*main.window, "undoAction").trigger();
        QCOMPARE(main.file(), main.listAtStart);
    }

    void knowsWhatIsSelected()
    {
        MainWindow main({{.name = "a"}, {.name = "b"}, {.name = "c", .status = 1}});
        main.table().horizontalHeader()->moveSection(3, 0);
        selectRows(main, {u"a"_s, u"c"_s});
        QCOMPARE(main.store.getSelectedTask().name, u"c"_s);
        QCOMPARE(main.button("closeButton").text(), u"Reopen"_s);
        QVERIFY(!main.button("editButton").isEnabled());
        QCOMPARE(find<QLabel>(*main.window, "statusMessage").text(), u"2 selected, 3 tasks"_s);
        QTest::keySequence(&main.table(), QKeySequence::Copy);
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.indexOf(u"Task Key: KEY-a\n"_s) < copied.indexOf(u"Task Key: KEY-c\n"_s));
        selectRows(main, {u"b"_s});
        QVERIFY(main.button("editButton").isEnabled());
        QTest::mouseClick(main.table().viewport(), Qt::LeftButton, Qt::ControlModifier,
                          main.table().visualRect(main.table().model()->index(1, 3)).center());
        QCOMPARE(main.selectedName(), u"b"_s); // one stays
    }

    void narrowsWhatIsSeenByAFilterThatIsKept()
    {
        MainWindow main({{.name = "a", .client = "Acme"},
                         {.name = "b", .client = "Bo"},
                         {.name = "c", .client = "Acme"}});
        NamedFilters filters(main.defaults);
        main.window->setNamedFilters(filters);
        selectRows(main, {u"c"_s});
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Shift+F"_s));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QCOMPARE(main.shown() + main.selectedName(), u"a cc"_s);
        QCOMPARE(find<QLabel>(*main.window, "filterCounts").text(), u"2 of 3"_s);
        main.click("hideButton"); // of what is seen
        QVERIFY(main.file().contains("KEY-c|true|") && main.shown() == u"a"_s);
        oblino::click(*main.window, "keepFilter");
        answerNext(main, "filterName", u"Acme & Co"_s);
        QTest::keyClick(&find<QWidget>(*main.window, "filterClient"), Qt::Key_Escape);
        QCOMPARE(main.shown(), u"a b"_s);
        main.views().setCurrentIndex(main.views().findText(u"Acme & Co"_s));
        QCOMPARE(main.views().currentText() + main.shown(), u"Alla"_s);
        QTest::keyClicks(&main.searchField(), u"b"_s);
        QVERIFY(find<QLabel>(*main.window, "emptyTitle").text().contains(u"passes the filter"_s));
        QCOMPARE(main.store.tasks().size(), 1); // of the store, which knows no filter
    }

    void keepsTheDaysInTheirTrueOrder()
    {
        QByteArray list;
        for (const char *row : {"3/8/26 10 0 d", "3/7/26 9 30 b", "3/7/26 10 0 c", "3/7/26 9 5 a"}) {
            const QByteArrayList parts = QByteArray(row).split(' ');
            list += Row{.name = "x"}
                        .bytes()
                        .replace("3/7/26|x|", parts[0] + '|' + parts[3] + '|')
                        .replace("|9|30|", '|' + parts[1] + '|' + parts[2] + '|');
        }
        MainWindow main(list);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Shift+T"_s));
        QCOMPARE(main.shown(), u"a b c d"_s);
        QCOMPARE(main.file(), list);
        task added = main.store.fullList().at(1);
        added.name = u"b2"_s;
        main.store.addTask(added);
        main.notifications.post(u"reload"_s);
        QCOMPARE(main.saved(), u"a b b2 c d"_s);
        find<QAction>(*main.window, "undoAction").trigger();
        QCOMPARE(main.saved(), u"a b c d"_s);
        main.views().setCurrentIndex(6);
        selectRows(main, {u"a"_s, u"c"_s});
        Q_EMIT find<TaskTable>(*main.window, "tblView").rowsDropped(4);
        QCOMPARE(main.saved(), u"b d a c"_s);
        QCOMPARE(main.table().selectionModel()->selectedRows().size(), 1);
    }

    void marksTheDay()
    {
        const QDate day = QDate::currentDate();
        QByteArray list;
        for (const auto &[name, days, due, isHidden] : {std::tuple("past", -40, -1, false),
                                                        {"today", 0, 0, false},
                                                        {"hidden", 0, 0, true},
                                                        {"next", 1, 2, false}}) {
            list += Row{.name = name, .hidden = isHidden}
                        .bytes()
                        .replace("3/7/26", inFile(day.addDays(days)))
                        .replace("3/9/26", inFile(day.addDays(due)));
        }
        for (int i = 0; i < 60; ++i)
            list += Row{.name = "old", .status = 1}.bytes();
        MainWindow main(list);
        const auto spoken = [&main](const QString &name, int column) {
            const int row = static_cast<int>(main.shown().split(u' ').indexOf(name));
            return main.table().model()->index(row, column).data(Qt::AccessibleTextRole).toString();
        };
        const auto topRow = [&main] { return main.table().rowAt(0); };
        QCOMPARE(find<QLabel>(*main.window, "due").text(), u"1 due today, 1 overdue"_s);
        QVERIFY(topRow() > 10); // at today
        main.views().setCurrentIndex(6);
        QVERIFY(spoken(u"past"_s, 9).endsWith(u", overdue"_s));
        QVERIFY(spoken(u"today"_s, 0).endsWith(u", today"_s) && spoken(u"today"_s, 9).endsWith(u", today"_s));
        QCOMPARE(spoken(u"hidden"_s, 3), u"hidden, hidden"_s);
        QVERIFY(!spoken(u"next"_s, 9).contains(u','));
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+T"_s));
        QCOMPARE(main.selectedName(), u"today"_s);
    }
};

OBLINO_TEST(tst_manytasks, QApplication)

#include "tst_manytasks.moc"
