#include "mainwindowfixture.h"

#include <core/tasklistwriter.h>
#include <ui/windows/taskundo.h>

#include <malloc.h>

#include <set>

namespace {

task randomTask(QRandomGenerator &random, int number)
{
    return {.key = {},
            .date = QDate(2026, 1, 1).addDays(random.bounded(300)).startOfDay(),
            .name = u"Nº %1 \u202eשלום"_s.arg(number),
            .desc = QString(random.bounded(60), u'd'),
            .client = u"client %1"_s.arg(random.bounded(9)),
            .due = QDate(2026, 2, 1).addDays(random.bounded(300)).startOfDay(),
            .startHour = random.bounded(24)};
}

TaskPlaces randomPlaces(QRandomGenerator &random, qsizetype count)
{
    std::set<qsizetype> places;
    for (int i = random.bounded(5); i >= 0 && count > 0; --i)
        places.insert(random.bounded(static_cast<int>(count)));
    return {places.begin(), places.end()};
}

// One command of any kind, as the windows give them.
void act(TaskManager &store, QRandomGenerator &random, int number)
{
    const auto count = static_cast<int>(store.fullList().size());
    store.setSelected(qint64(count > 0 ? random.bounded(count) : -1));
    const TaskPlaces places = randomPlaces(random, count);
    switch (random.bounded(14)) {
    case 0:
    case 1:
    case 2:
        return void(store.addTask(randomTask(random, number)));
    case 3:
        return store.editSelectedTask(randomTask(random, number));
    case 4:
        return void(store.closeSelected(nullptr));
    case 5:
        return store.hideSelected();
    case 6:
        return void(store.cloneSelected(nullptr));
    case 7:
        return store.removeSelected();
    case 8:
        return void(store.swapSelected(random.bounded(2) == 0));
    case 9:
        return store.sort({random.bounded(2) == 0 ? u"NameCellID"_s : u"ClientCellID"_s, true});
    case 10:
        return store.removeTasks(places);
    case 11:
        return store.changeTasks(ChangeKind::Edit, places, [](task &t) { t.client = u"Ørsted"_s; });
    case 12:
        return store.moveTasks(places, random.bounded(count + 1));
    default: // restored or merged: some go, some are new, the others stand elsewhere
        QList<task> list = store.fullList();
        std::shuffle(list.begin(), list.end(), random);
        list.resize(list.size() * 3 / 4, task());
        list.append(randomTask(random, number));
        return store.setTasks(list);
    }
}

} // namespace

/// What was done to the list is undone and done again, down to the file.
class tst_taskundo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesBackAndForthThroughTheSameFiles_data()
    {
        const Table<quint32, bool> row;
        row("one", 1U, false);
        row("two", 2U, false);
        row("while searching", 3U, true);
    }
    void goesBackAndForthThroughTheSameFiles()
    {
        const auto [seed, isSearching] = Table<quint32, bool>::cells();
        QRandomGenerator random(seed);
        Store s;
        s.store.setRecording(true);
        TaskUndo undo(s.store, [] { return false; });
        QAction back;
        QAction forth;
        undo.drive(back, forth);
        const auto bytes = [&s] { return taskListText(s.store.fullList(), false); };
        QByteArrayList stations = {bytes()};
        for (int number = 0; number < 400; ++number) {
            if (isSearching && number % 50 == 25) {
                s.store.setIsSearching(!s.store.isSearching());
                s.store.setSearchTerm(QString::number(number));
                s.store.search();
            }
            act(s.store, random, number);
            undo.take();
            undo.setSaved();
            if (undo.stack().count() >= stations.size())
                stations += bytes();
            QCOMPARE(undo.stack().count(),
                     stations.size() - 1); // one step a command, none where nothing changed
        }
        for (int round = 0; round < 2; ++round) {
            for (qsizetype i = stations.size() - 1; i > 0; --i) {
                QCOMPARE(bytes(), stations.at(i));
                back.trigger();
            }
            for (const QByteArray &station : stations) {
                QCOMPARE(bytes(), station);
                forth.trigger();
            }
        }
    }

    void keepsLittle()
    {
        Store s;
        QRandomGenerator random(5);
        QList<task> list;
        for (int number = 0; number < 10'000; ++number) {
            list.append(randomTask(random, number));
            list.last().key = QString::number(number);
        }
        s.store.setTasks(list);
        list.clear();
        s.store.setRecording(true);
        TaskUndo undo(s.store, [] { return false; });
        const size_t before = ::mallinfo2().uordblks;
        for (int number = 0; number < 10'000; ++number) {
            s.store.setSelected(qint64(random.bounded(10'000)));
            if (number % 50 == 0)
                s.store.sort({u"NameCellID"_s, number % 100 == 0});
            else if (number % 50 == 1)
                s.store.closeSelected(nullptr);
            else
                s.store.editSelectedTask(randomTask(random, number));
            undo.take();
            undo.setSaved();
        }
        QVERIFY(undo.stack().count() > 9'900); // but for closing what is closed
        const size_t kept = ::mallinfo2().uordblks - before;
        QVERIFY2(kept < 50'000'000, qPrintable(QString::number(kept)));
    }

    void takesBackWhatAnotherProgramHasWritten()
    {
        MainWindow main({{.name = "apple", .date = "3/7/26"}, {.name = "pear", .date = "3/8/26"}});
        main.clickRow(u"pear"_s);
        main.click("closeButton");
        const QByteArray closed = main.file();
        main.setFile(Row{.name = "fig", .date = "3/9/26"}.bytes() + closed);
        main.window->lookAtFile();
        QCOMPARE(main.shown(), u"apple pear fig"_s);
        auto &undo = find<QAction>(*main.window, "undoAction");
        QCOMPARE(undo.text(), u"&Undo Changes of Another Program"_s);
        undo.trigger();
        QCOMPARE(main.file(), closed);
        undo.trigger();
        QCOMPARE(main.file(), main.listAtStart);
    }

    void namesWhatItUndoesAndSavesIt()
    {
        MainWindow main({{.name = "apple"}, {.name = "R&D"}, {.name = "pear"}});
        auto &undo = find<QAction>(*main.window, "undoAction");
        QVERIFY(!undo.isEnabled());
        main.clickRow(u"R&D"_s);
        main.click("deleteButton");
        main.clickRow(u"pear"_s);
        main.click("hideButton");
        QCOMPARE(undo.text(), u"&Undo Hide “pear”"_s);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Z"_s));
        QCOMPARE(main.selectedName(), u"pear"_s);
        QCOMPARE(undo.text(), u"&Undo Delete “R&&D”"_s);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Z"_s));
        QCOMPARE(main.file(), main.listAtStart);
        QCOMPARE(main.selectedName() + main.shown(), u"R&Dapple R&D pear"_s);
        QTest::keySequence(&main.table(), QKeySequence(u"Ctrl+Shift+Z"_s));
        QCOMPARE(main.saved(), u"apple pear"_s);
        main.appearance.setInterfaceStyle(u"Dark"_s); // which turns all colours round
        undo.trigger();
        QCOMPARE(main.file(), main.listAtStart);
        main.store.removeAll(); // as the eraser does
        main.notifications.post(u"reload"_s);
        QVERIFY(!undo.isEnabled() && !find<QAction>(*main.window, "redoAction").isEnabled());
    }
};

OBLINO_TEST(tst_taskundo, QApplication)

#include "tst_taskundo.moc"
