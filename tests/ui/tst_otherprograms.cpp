#include "mainwindowfixture.h"

using Deeds = Table<std::function<void(const MainWindow &)>>;
using Changes = Table<QByteArray, QString>;

namespace {

const QList<Row> threeTasks = {{.name = "apple", .date = "3/1/26"},
                               {.name = "banana", .date = "3/2/26", .color = "0.25|0.1|0.0|0.5"},
                               {.name = "cherry", .date = "3/3/26"}};

// The rows in any order.
QSet<QByteArray> rowsOf(const QByteArray &bytes)
{
    const QByteArrayList rows = bytes.split('^');
    return {rows.begin(), rows.end()};
}

// Nobody can write the list while a folder is in its place.
void block(const MainWindow &main)
{
    QVERIFY(QFile::remove(main.home.listPath()) && QDir().mkdir(main.home.listPath()));
}

void moveFolder(const MainWindow &main, bool away)
{
    const QString other = main.home.documents() + u".away"_s;
    QVERIFY(QDir().rename(away ? main.home.documents() : other, away ? other : main.home.documents()));
}

// Another program's way of writing: a new file in the place of the old one.
void replaceList(const MainWindow &main, const QByteArray &bytes)
{
    QSaveFile file(main.home.listPath());
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit());
}

} // namespace

/// What other programs do to the list's file while it is open.
class tst_otherprograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aListThatIsOnlyHereOutlivesAChangeOfAppearanceAndTheEnd_data()
    {
        const auto writing = [](const QByteArray &bytes) {
            return [bytes](const MainWindow &main) { main.setFile(bytes); };
        };
        Deeds row;
        row("deleted", [](const MainWindow &main) { QVERIFY(QFile::remove(main.home.listPath())); });
        row("emptied", writing({}));
        row("cut within a row", writing(listOf(threeTasks).chopped(30)));
        row("zeroes, as after a power cut", writing(QByteArray(400, '\0')));
        row("rows that cannot be read", writing("broken^"));
        row("a folder in its place", block);
        row("its folder is away", [](const MainWindow &main) { moveFolder(main, true); });
    }
    void aListThatIsOnlyHereOutlivesAChangeOfAppearanceAndTheEnd()
    {
        const auto [deed] = Deeds::cells();
        for (const bool isNoticed : {false, true}) { // before the appearance changes, or a search goes on
            MainWindow main(threeTasks);
            const QString term = isNoticed ? QString() : u"banana"_s;
            QTest::keyClicks(&main.searchField(), term);
            deed(main);
            if (isNoticed) {
                QTRY_VERIFY(!main.notice().isEmpty());
                QVERIFY(main.window->isUnsaved() && main.saveState().startsWith(u"Not saved: "_s));
            }
            main.appearance.setInterfaceStyle(u"Dark"_s);
            QCOMPARE(main.shown(), isNoticed ? u"apple banana cherry"_s : term);
            QVERIFY(main.store.fullList().at(1).color == Color(0.75, 0.9, 1, 0.5));
            main.appearance.setInterfaceStyle(std::nullopt);
            (void)QDir().rmdir(main.home.listPath());
            QVERIFY(QDir().mkpath(main.home.documents()));
            QCOMPARE(main.window->saveNow(), QString());
            QCOMPARE(main.file(), listOf(threeTasks));
            QVERIFY(QRegularExpression(u"^Saved \\d+:\\d\\d"_s).match(main.saveState()).hasMatch());
            QVERIFY(!main.window->isUnsaved() && main.notice().isEmpty() == main.home.kept().isEmpty());
        }
    }

    void takesUpWhatAnotherProgramWrites_data()
    {
        Changes row; // the file, and what is shown then in the view of every task, sorted by date
        row("a task more", listOf(threeTasks) + Row{.name = "मेरा日本🎉", .date = "3/4/26"}.bytes(),
            u"apple banana cherry मेरा日本🎉"_s);
        row("another order, which the shown one hides",
            listOf({threeTasks.at(2), threeTasks.at(0), threeTasks.at(1)}), u"apple banana cherry"_s);
        row("the last two cut off at a row's end", listOf(threeTasks.first(1)), u"apple"_s);
        row("cut off within a row: ours stays", listOf(threeTasks).chopped(9), u"apple banana cherry"_s);
        row("a row that cannot be read: ours stays", listOf(threeTasks.first(2)) + "broken^",
            u"apple banana cherry"_s);
    }
    void takesUpWhatAnotherProgramWrites()
    {
        const auto [bytes, shown] = Changes::cells();
        for (const bool isReplaced : {false, true}) {
            const MainWindow main(threeTasks);
            main.clickRow(u"apple"_s);
            isReplaced ? replaceList(main, bytes) : main.setFile(bytes);
            QTRY_VERIFY(!main.notice().isEmpty());
            QCOMPARE(main.shown(), shown);
            QCOMPARE(main.selectedName(), u"apple"_s);
            // Nothing that was in the list is nowhere now.
            for (const Row &row : threeTasks)
                QVERIFY(!main.home.filesWith(row.bytes()).isEmpty() ||
                        shown.contains(QLatin1String(row.name)));
            main.click("deleteButton");
            QVERIFY(main.home.kept().contains(bytes) ||
                    rowsOf(main.file() + threeTasks.first().bytes()) == rowsOf(bytes));
        }
    }

    void keepsViewSearchAndPlaceWhenItReadsAgain()
    {
        QByteArray list;
        for (int i = 1000; i < 1200; ++i)
            list += Row{.name = ("task" + QByteArray::number(i)).constData()}.bytes();
        const MainWindow main(list);
        main.views().setCurrentIndex(6);
        QTest::keyClicks(&main.searchField(), u"task"_s);
        main.clickRow(u"task1004"_s);
        QScrollBar &bar = *main.table().verticalScrollBar();
        bar.setValue(bar.maximum() / 2);
        const int scrolled = bar.value();
        main.setFile(list + Row{.name = "other"}.bytes());
        QTRY_VERIFY(!main.notice().isEmpty());
        QCOMPARE(main.selectedName(), u"task1004"_s);
        QCOMPARE(bar.value(), scrolled);
        QCOMPARE(find<QLabel>(*main.window, "statusMessage").text(), u"200 of 201 tasks"_s);
    }

    void mergesWhatCouldNotBeSaved()
    {
        MainWindow main(threeTasks);
        block(main);
        main.clickRow(u"apple"_s);
        main.click("closeButton");
        main.clickRow(u"banana"_s);
        main.click("deleteButton");
        QVERIFY(main.window->isUnsaved() && main.notice().contains(u"could not be saved"_s));
        // The other side hid the first, closed the third and added a fourth.
        const Row hidden{.name = "apple", .date = "3/1/26", .hidden = true};
        const Row closed{.name = "cherry", .date = "3/3/26", .status = 1};
        const Row added{.name = "fig", .date = "3/4/26"};
        QVERIFY(QDir().rmdir(main.home.listPath()));
        main.setFile(listOf({hidden, threeTasks.at(1), closed, added}));
        QTRY_VERIFY(!main.window->isUnsaved());
        QCOMPARE(main.shown(), u"apple cherry fig"_s);
        QCOMPARE(main.file(), listOf({{.name = "apple", .date = "3/1/26", .status = 1}, closed, added}));
        QVERIFY(main.home.kept().contains(hidden.bytes()));
    }

    void waitsForAFormAndLooksOnceMoreAtTheEnd()
    {
        for (const bool isSaved : {true, false}) {
            const MainWindow main(threeTasks);
            main.clickRow(u"banana"_s);
            main.click("editButton");
            main.setFile(listOf({threeTasks.at(0), threeTasks.at(1), {.name = "fig"}}));
            if (isSaved) {
                find<QLineEdit>(*main.window, "txtTaskName").setText(u"typed"_s);
                click(*main.window, "saveButton");
            } else {
                main.window->close();
            }
            QTRY_COMPARE(main.shown(), isSaved ? u"apple typed fig"_s : u"apple banana fig"_s);
            QCOMPARE(main.saved(), main.shown());
            QVERIFY(!main.home.filesWith(threeTasks.at(2).bytes()).isEmpty()); // which went from the file
        }
    }

    void keepsWhatAnotherProgramReverts()
    {
        const Row closed{.name = "apple", .date = "3/1/26", .status = 1};
        const MainWindow main(threeTasks);
        main.clickRow(u"apple"_s);
        main.click("closeButton");
        QVERIFY(main.file().startsWith(closed.bytes()));
        main.setFile(listOf(threeTasks));
        QTRY_VERIFY(!main.notice().isEmpty());
        QCOMPARE(main.home.filesWith(closed.bytes()).size(), 1);
        // What comes from there is its own to change.
        const auto keptBefore = main.home.kept().size();
        main.setFile(listOf({threeTasks.at(0), threeTasks.at(1), {.name = "cherry"}}));
        QTRY_COMPARE(main.store.fullList().at(2).date.date(), QDate(2026, 3, 7));
        QCOMPARE(main.home.kept().size(), keptBefore);
    }

    void readsAFileThatAppearsLate()
    {
        MainWindow main;
        QVERIFY(QDir().rmdir(main.home.documents()));
        main.store.addTask({.key = u"KEY-fig"_s, .name = u"fig"_s});
        main.notifications.post(u"reload"_s);
        QVERIFY(main.window->isUnsaved() && QDir().mkdir(main.home.documents()));
        main.setFile(listOf(threeTasks));
        QTRY_COMPARE(main.shown(), u"fig apple banana cherry"_s);
        QCOMPARE(main.saved(), main.shown());
    }

    void takesNoNoticeOfAFolderThatComesBack()
    {
        const MainWindow main(threeTasks);
        QCOMPARE(main.saveState(), QString());
        moveFolder(main, true);
        QTRY_COMPARE(main.saveState(), u"Not saved: the file is gone"_s);
        moveFolder(main, false);
        QTRY_COMPARE(main.saveState(), QString());
        QVERIFY(main.notice().isEmpty() && !main.window->isUnsaved());
    }
};

OBLINO_TEST(tst_otherprograms, QApplication)

#include "tst_otherprograms.moc"
