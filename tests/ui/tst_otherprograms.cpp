#include "mainwindowfixture.h"

#include <ui/windows/viewcontrolleredit.h>

using Deed = std::function<void(const MainWindow &)>;
using Deeds = Table<Deed>;
using Changes = Table<QByteArray, QString>;

namespace {

const QList<Row> threeTasks = {{.name = "apple", .date = "3/1/26"},
                               {.name = "banana", .date = "3/2/26", .color = "0.25|0.1|0.0|0.5"},
                               {.name = "cherry", .date = "3/3/26"}};

QByteArray listOf(const QList<Row> &rows)
{
    QByteArray bytes;
    for (const Row &row : rows)
        bytes += row.bytes();
    return bytes;
}

QByteArrayList sortedRows(const QByteArray &bytes)
{
    QByteArrayList rows = bytes.split('^');
    std::sort(rows.begin(), rows.end());
    return rows;
}

// Another program's way of writing: a new file in the place of the old one.
void replaceList(const MainWindow &main, const QByteArray &bytes)
{
    TemporaryHome::write(main.home.listPath() + u".new"_s, bytes);
    QVERIFY(QDir().rename(main.home.documents(), main.home.documents() + u".moving"_s));
    QVERIFY(QFile::remove(main.home.documents() + u".moving/ltodolist.txt"_s));
    QVERIFY(QFile::rename(main.home.documents() + u".moving/ltodolist.txt.new"_s,
                          main.home.documents() + u".moving/ltodolist.txt"_s));
    QVERIFY(QDir().rename(main.home.documents() + u".moving"_s, main.home.documents()));
}

// Nobody can write the list while a folder is in its place.
void block(const MainWindow &main)
{
    QVERIFY(QFile::rename(main.home.listPath(), main.home.listPath() + u".away"_s));
    QVERIFY(QDir().mkdir(main.home.listPath()));
}

void unblock(const MainWindow &main)
{
    QVERIFY(QDir().rmdir(main.home.listPath()));
    QVERIFY(QFile::rename(main.home.listPath() + u".away"_s, main.home.listPath()));
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
            return Deed(
                [bytes](const MainWindow &main) { TemporaryHome::write(main.home.listPath(), bytes); });
        };
        Deeds row;
        row("deleted", [](const MainWindow &main) { QVERIFY(QFile::remove(main.home.listPath())); });
        row("emptied", writing({}));
        row("cut within a row", writing(listOf(threeTasks).chopped(30)));
        row("zeroes, as after a power cut", writing(QByteArray(400, '\0')));
        row("rows that cannot be read", writing("broken^"));
        row("a folder in its place", block);
    }
    void aListThatIsOnlyHereOutlivesAChangeOfAppearanceAndTheEnd()
    {
        const auto [deed] = Deeds::cells();
        MainWindow main(threeTasks);
        deed(main);
        main.appearance.setInterfaceStyle(u"Dark"_s);
        QCOMPARE(main.shown(), u"apple banana cherry"_s);
        QVERIFY(main.store.tasks().at(1).color == Color(0.75, 0.9, 1, 0.5));
        main.appearance.setInterfaceStyle(std::nullopt);
        QTRY_VERIFY(!main.notice().isEmpty());
        QVERIFY(main.window->isUnsaved());
        QVERIFY2(main.saveState().startsWith(u"Not saved: "_s), qPrintable(main.saveState()));
        if (QFileInfo(main.home.listPath()).isDir())
            unblock(main);
        QCOMPARE(main.window->saveNow(), QString());
        QCOMPARE(TemporaryHome::content(main.home.listPath()), listOf(threeTasks));
        QVERIFY(!main.window->isUnsaved() && main.notice().isEmpty() == main.home.kept().isEmpty());
    }

    void takesUpWhatAnotherProgramWrites_data()
    {
        Changes row; // the file, and what is shown then in the view of every task, sorted by date
        row("a task more", listOf(threeTasks) + Row{.name = "fig", .date = "3/4/26"}.bytes(),
            u"apple banana cherry fig"_s);
        row("a task less", listOf(threeTasks.first(2)), u"apple banana"_s);
        row("another order, which the shown one hides",
            listOf({threeTasks.at(2), threeTasks.at(0), threeTasks.at(1)}), u"apple banana cherry"_s);
        row("other scripts", listOf(threeTasks.first(2)) + Row{.name = "मेरा日本🎉", .date = "3/5/26"}.bytes(),
            u"apple banana मेरा日本🎉"_s);
        row("the last two cut off at a row's end", listOf(threeTasks.first(1)), u"apple"_s);
        row("cut off within a row: ours stays", listOf(threeTasks).chopped(9), u"apple banana cherry"_s);
        row("emptied: ours stays", "", u"apple banana cherry"_s);
        row("a row that cannot be read: ours stays", listOf(threeTasks.first(2)) + "broken^",
            u"apple banana cherry"_s);
    }
    void takesUpWhatAnotherProgramWrites()
    {
        const auto [bytes, shown] = Changes::cells();
        for (const bool isReplaced : {false, true}) {
            const MainWindow main(threeTasks);
            main.clickRow(u"apple"_s);
            if (isReplaced)
                replaceList(main, bytes);
            else
                TemporaryHome::write(main.home.listPath(), bytes);
            QTRY_VERIFY(!main.notice().isEmpty());
            QCOMPARE(main.shown(), shown);
            QCOMPARE(main.selectedName(), u"apple"_s);
            // Nothing that was in the list is nowhere now.
            for (const Row &row : threeTasks)
                QVERIFY(!main.home.filesWith(row.bytes()).isEmpty() ||
                        shown.contains(QLatin1String(row.name)));
            main.click("deleteButton");
            QVERIFY(main.home.kept().contains(bytes) ||
                    sortedRows(TemporaryHome::content(main.home.listPath()) + threeTasks.first().bytes()) ==
                        sortedRows(bytes));
        }
    }

    void mergesWhatCouldNotBeSaved()
    {
        MainWindow main(threeTasks);
        block(main);
        main.clickRow(u"apple"_s);
        main.click("closeButton");
        main.clickRow(u"banana"_s);
        main.click("deleteButton");
        QVERIFY(main.window->isUnsaved());
        // The other side hid the first, closed the third and added a fourth.
        const QByteArray theirs = listOf({{.name = "apple", .date = "3/1/26", .hidden = true},
                                          threeTasks.at(1),
                                          {.name = "cherry", .date = "3/3/26", .status = 1},
                                          {.name = "fig", .date = "3/4/26"}});
        unblock(main);
        replaceList(main, theirs);
        QTRY_VERIFY(!main.window->isUnsaved());
        QCOMPARE(main.shown(), u"apple cherry fig"_s);
        QCOMPARE(TemporaryHome::content(main.home.listPath()),
                 listOf({{.name = "apple", .date = "3/1/26", .status = 1},
                         {.name = "cherry", .date = "3/3/26", .status = 1},
                         {.name = "fig", .date = "3/4/26"}}));
        QVERIFY(main.home.kept().contains(Row{.name = "apple", .date = "3/1/26", .hidden = true}.bytes()));
    }

    void waitsForAForm()
    {
        const MainWindow main(threeTasks);
        main.clickRow(u"banana"_s);
        main.click("editButton");
        auto *form = main.window->findChild<ViewControllerEdit *>();
        TemporaryHome::write(main.home.listPath(), listOf(threeTasks.first(2)) + Row{.name = "fig"}.bytes());
        find<QLineEdit>(*form, "txtTaskName").setText(u"typed"_s);
        click(*form, "saveButton");
        QTRY_COMPARE(main.saved(), u"apple typed fig"_s);
        QCOMPARE(main.shown(), u"apple typed fig"_s);
        QVERIFY(!main.home.filesWith(threeTasks.at(2).bytes()).isEmpty()); // which the other program removed
    }

    void keepsWhatAnotherProgramReverts()
    {
        const Row closed{.name = "apple", .date = "3/1/26", .status = 1};
        const MainWindow main(threeTasks);
        main.clickRow(u"apple"_s);
        main.click("closeButton");
        QVERIFY(TemporaryHome::content(main.home.listPath()).startsWith(closed.bytes()));
        TemporaryHome::write(main.home.listPath(), listOf(threeTasks));
        QTRY_VERIFY(!main.notice().isEmpty());
        QCOMPARE(main.home.filesWith(closed.bytes()).size(), 1);
        // What comes from there is its own to change.
        const auto keptBefore = main.home.kept().size();
        TemporaryHome::write(main.home.listPath(),
                             listOf({threeTasks.at(0), threeTasks.at(1), {.name = "cherry"}}));
        QTRY_COMPARE(main.store.fullList().at(2).date.date(), QDate(2026, 3, 7));
        QCOMPARE(main.home.kept().size(), keptBefore);
    }

    void readsAFileThatAppearsLate()
    {
        MainWindow main({});
        QCOMPARE(main.shown(), QString());
        TemporaryHome::write(main.home.listPath(), listOf(threeTasks));
        QTRY_COMPARE(main.shown(), u"apple banana cherry"_s);
    }

    void saysWhetherTheListIsSaved()
    {
        const MainWindow main(threeTasks);
        QCOMPARE(main.saveState(), QString());
        block(main);
        main.clickRow(u"apple"_s);
        main.click("deleteButton");
        QVERIFY2(main.saveState().startsWith(u"Not saved: "_s), qPrintable(main.saveState()));
        QVERIFY(main.notice().contains(u"could not be saved"_s));
        unblock(main);
        main.clickRow(u"banana"_s);
        main.click("deleteButton");
        QVERIFY2(QRegularExpression(u"^Saved \\d+:\\d\\d"_s).match(main.saveState()).hasMatch(),
                 qPrintable(main.saveState()));
        QCOMPARE(main.notice(), QString());
        QVERIFY(QFile::remove(main.home.listPath()));
        QTRY_COMPARE(main.saveState(), u"Not saved: the file is gone"_s);
    }
};

OBLINO_TEST(tst_otherprograms, QApplication)

#include "tst_otherprograms.moc"
