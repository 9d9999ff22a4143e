#include "toolhome.h"

#include <support/table.h>
#include <support/testmain.h>

#include <base/noticelog.h>
#include <core/tasksearch.h>
#include <tools/windows/earlierversionswindow.h>

#include <QSignalSpy>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

// Columns of the two tables.
constexpr int reasonColumn = 1;
constexpr int amountColumn = 2;
constexpr int differenceColumn = 3;
constexpr int nameColumn = 3;

QByteArray row(const QByteArray &key, const QByteArray &name)
{
    return "3/7/24|" + name + "|Two coats|0.1|0.5|1.0|1.0|3/9/24|0|2|Open|High|" + key +
           "|false|9|30|17|0|Harbor Cafe|Dana^";
}

QByteArray png(Qt::GlobalColor color)
{
    return pngOf({72, 48}, color);
}

const QByteArray before = row("A", "Order timber") + row("B", "Fix the roof") + row("C", "Sweep");
const QByteArray present = row("A", "Order larch") + row("C", "Sweep") + row("D", "Mow") + row("E", "Rake");

} // namespace

// A home with a list, notes and a board, and the window.
struct Window : ToolHome
{
    explicit Window(bool dark = false)
    {
        appearance.setInterfaceStyle(dark ? std::optional(u"Dark"_s) : std::nullopt);
        fill(present, "notes of now", png(Qt::red));
        notifications.observe(u"reload"_s, &notifications, [this] { QVERIFY(list.saveToFile()); });
    }

    void keep(const QString &name, const QByteArray &bytes, VersionReason reason) const
    {
        const QStringList folders = EarlierVersions::standardFolders(home.privateFolder(), home.documents());
        QCOMPARE(EarlierVersions(name, folders).keep(bytes, reason), QString());
    }
    void keep(const QByteArray &bytes, VersionReason reason = VersionReason::Daily) const
    {
        keep(u"ltodolist.txt"_s, bytes, reason);
    }

    void open()
    {
        window = std::make_unique<EarlierVersionsWindow>(
            EarlierVersionsData{.store = store,
                                .taskList = list,
                                .documents = documents,
                                .notifications = notifications,
                                .utilities = utilities,
                                .notices = notices,
                                .privateFolder = home.privateFolder(),
                                .saveOpen = [this](DataKind) { return unsaved; },
                                .restored = [this](DataKind kind) { restored += kind; }});
        showActive(*window);
    }
    void choose(Qt::Key tab) const { QTest::keyClick(window.get(), tab, Qt::AltModifier); }
    [[nodiscard]] QTableView &versions() const { return find<QTableView>(*window, "versionTable"); }
    [[nodiscard]] QTableView &look() const { return find<QTableView>(*window, "taskLook"); }
    [[nodiscard]] QString result() const { return find<QLabel>(*window, "resultLabel").text(); }
    [[nodiscard]] QPushButton &button(const char *name) const { return find<QPushButton>(*window, name); }
    [[nodiscard]] QByteArray file() const { return TemporaryHome::content(home.listPath()); }
    [[nodiscard]] QString differences() const { return columnOf(versions(), differenceColumn); }

    NoticeLog notices;
    QString unsaved;
    QList<DataKind> restored;
    std::unique_ptr<EarlierVersionsWindow> window;
};

using Attempts = Table<Qt::Key, QString, QByteArray, VersionReason, QString>;

class tst_earlierversionswindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhyHowManyAndHowDifferent()
    {
        Window w;
        w.keep(before);
        w.open();
        QTRY_COMPARE(w.differences(), u"+2 −1 ≠1"_s);
        QCOMPARE(columnOf(w.versions(), reasonColumn), u"Before the first change of the day"_s);
        QCOMPARE(columnOf(w.versions(), amountColumn), u"3"_s);
        QCOMPARE(columnOf(w.look(), nameColumn), u"Order timber Fix the roof Sweep"_s);

        // A change in the main window is seen when the user comes back.
        w.store.setSelected(u"D"_s);
        w.store.removeSelected();
        QEvent activation(QEvent::ActivationChange);
        QCoreApplication::sendEvent(w.window.get(), &activation);
        QTRY_COMPARE(w.differences(), u"+1 −1 ≠1"_s);
    }

    void restoresTheListAndKeepsWhatItReplaces_data()
    {
        const Table<bool, bool> data;
        data("light", false, false);
        data("in a search in the dark", true, true);
    }
    void restoresTheListAndKeepsWhatItReplaces()
    {
        const auto [dark, searching] = Table<bool, bool>::cells();
        Window w(dark);
        w.keep(before);
        w.store.setIsSearching(searching);
        if (searching)
            w.store.setSearchTerm(u"Mow"_s);
        w.store.search();
        w.store.setSelected(u"C"_s);
        w.open();
        QTest::keyClick(w.window.get(), Qt::Key_R, Qt::AltModifier);
        QTRY_VERIFY2(w.result().startsWith(u"Restored."), qPrintable(w.result()));
        QCOMPARE(w.file(), before);
        QCOMPARE(w.store.fullList().first().color.red(), dark ? 0.9 : 0.1);
        QCOMPARE(w.store.getSelectedTask().key, u"C"_s);
        QVERIFY(w.home.kept().contains(present));
        QTRY_VERIFY(w.differences().contains(u"+1 −2 ≠1"_s));
    }

    void restoresSingleTasks()
    {
        Window w(true);
        w.keep(before);
        w.open();
        QVERIFY(!w.button("restoreTasksButton").isEnabled());
        QCOMPARE(w.button("restoreTasksButton").toolTip(), u"Select tasks of the version first."_s);
        clickCell(w.look(), 0, nameColumn);
        clickCell(w.look(), 1, nameColumn, Qt::ControlModifier);
        const QSignalSpy added(&w.store, &TaskManager::taskAdded);
        click(*w.window, "restoreTasksButton");
        QCOMPARE(added.size(), 1);
        QCOMPARE(added.first().first().toString(), u"B"_s);
        QCOMPARE(w.file(), row("A", "Order timber") + row("C", "Sweep") + row("D", "Mow") + row("E", "Rake") +
                               row("B", "Fix the roof"));
        QVERIFY(w.home.kept().contains(present));
    }

    void aVersionOfSingleTasksLeavesTheOthers()
    {
        Window w;
        w.keep(row("A", "Order oak") + row("B", "Fix the roof"), VersionReason::Conflict);
        w.open();
        QTRY_COMPARE(w.differences(), u"−1 ≠1"_s);
        click(*w.window, "restoreButton");
        QCOMPARE(w.file(), row("A", "Order oak") + row("C", "Sweep") + row("D", "Mow") + row("E", "Rake") +
                               row("B", "Fix the roof"));
    }

    void saysWhyItCannotRestore_data()
    {
        const Attempts data; // tab, file, what was kept, why, what the button says
        const QString noText = u"It is not a text that the notes pad can read."_s;
        const VersionReason unread = VersionReason::Unread;
        data("rows of another kind", Qt::Key_T, u"ltodolist.txt"_s, "junk^", unread,
             u"No task in it can be read."_s);
        data("other bytes", Qt::Key_N, u"ltodonotes.txt"_s, "\xff\xfe", unread, noText);
        data("a damaged record", Qt::Key_N, u"ltodonotes.txt"_s, "journal", VersionReason::Damaged, noText);
        data("no picture", Qt::Key_W, u"ltodolistwhiteboard.png"_s, "\x89PNG", unread,
             u"It is not a picture that the whiteboard can show."_s);
    }
    void saysWhyItCannotRestore()
    {
        const auto [tab, name, bytes, reason, why] = Attempts::cells();
        Window w;
        w.keep(name, bytes, reason);
        w.open();
        w.choose(tab);
        QCOMPARE(w.versions().model()->rowCount(), 1);
        QVERIFY(!w.button("restoreButton").isEnabled());
        QCOMPARE(w.button("restoreButton").toolTip(), why);
    }

    void restoresNotesAndBoard()
    {
        Window w;
        w.keep(u"ltodonotes.txt"_s, "notes of before", VersionReason::Rescued);
        w.keep(u"ltodolistwhiteboard.png"_s, png(Qt::blue), VersionReason::Daily);
        w.open();
        w.choose(Qt::Key_N);
        QCOMPARE(find<QPlainTextEdit>(*w.window, "textLook").toPlainText(), u"notes of before"_s);
        QTRY_COMPARE(w.differences(), u"differs"_s);
        click(*w.window, "restoreButton");
        QCOMPARE(TemporaryHome::content(w.notes), "notes of before");
        // What was rescued is where it belongs; only what it replaced is left.
        QTRY_COMPARE(w.differences(), u"differs differs"_s);
        QVERIFY(!w.home.kept().contains("notes of before"));
        w.choose(Qt::Key_W);
        click(*w.window, "restoreButton");
        QCOMPARE(TemporaryHome::content(w.board), png(Qt::blue));
        QVERIFY(w.home.kept().contains("notes of now") && w.home.kept().contains(png(Qt::red)));
        QCOMPARE(w.restored, (QList{DataKind::Notes, DataKind::Whiteboard}));
    }

    void restoresNothingThatItCannotUndo()
    {
        Window w;
        w.keep(before);
        w.keep(u"ltodonotes.txt"_s, "notes of before", VersionReason::Daily);
        w.open();
        w.unsaved = u"The pad could not be saved."_s;
        w.choose(Qt::Key_N);
        click(*w.window, "restoreButton");
        QCOMPARE(w.result(), w.unsaved);
        QCOMPARE(TemporaryHome::content(w.notes), "notes of now");

        // No file can be added to a folder that is none.
        const QString recovery = w.home.privateFolder() + u"/recovery"_s;
        w.choose(Qt::Key_T);
        QVERIFY(QDir().rename(recovery, recovery + u" moved"_s));
        TemporaryHome::write(recovery, {});
        click(*w.window, "restoreButton");
        QVERIFY2(w.result().contains(u"could not be kept, so nothing was restored"), qPrintable(w.result()));
        QCOMPARE(w.file(), present);
        QCOMPARE(w.store.fullList().size(), 4);
    }

    void deletesAfterAQuestion()
    {
        Window w;
        w.keep(before);
        w.open();
        w.questions.answer = 1;
        QTest::keyClick(&w.versions(), Qt::Key_Delete);
        QCOMPARE(w.questions.asked.first().escapeButton, 1);
        QCOMPARE(keptIn(w.home.privateFolder(), true), QByteArrayList{before});
        w.questions.answer = 0;
        click(*w.window, "deleteButton");
        QCOMPARE(keptIn(w.home.privateFolder(), true), QByteArrayList());
        QVERIFY(find<QLabel>(*w.window, "emptyTitle").isVisible());
        QVERIFY(!w.button("deleteButton").isEnabled());
    }

    void holdsNothingOfWhatWasErased()
    {
        Window w;
        w.keep(u"ltodonotes.txt"_s, "secret", VersionReason::Rescued);
        w.open();
        w.choose(Qt::Key_N);
        const auto &text = find<QPlainTextEdit>(*w.window, "textLook");
        QCOMPARE(text.toPlainText(), u"secret"_s);
        QCOMPARE(w.documents.erase(u"ltodonotes.txt"_s), QString());
        w.window->dataErased(DataKind::Notes);
        QCOMPARE(text.toPlainText(), QString());
        QVERIFY(find<QLabel>(*w.window, "emptyTitle").isVisible());
    }

    void opensAtOnceWithManyVersionsOfALongList()
    {
        Window w;
        QByteArray longList;
        for (int number = 0; number < 2000; ++number)
            longList += row(QByteArray::number(number), "Sweep");
        for (int number = 0; number < 30; ++number)
            w.keep(longList, VersionReason::Restored);
        w.open();
        QVERIFY(w.differences().endsWith(u"…")); // it is there before it has read them all
        QTRY_VERIFY(!w.differences().contains(u"…"));
    }

    void whatWasSaidCanBeReadAgain()
    {
        Window w;
        w.notices.add(u"The first."_s);
        w.open();
        w.choose(Qt::Key_S);
        w.notices.add(u"The second."_s);
        const QRegularExpression said(u"^[\\d:]{8}  The first\\.\n[\\d:]{8}  The second\\.$"_s);
        const QString shown = find<QPlainTextEdit>(*w.window, "saidText").toPlainText();
        QVERIFY2(said.match(shown).hasMatch(), qPrintable(shown));
        QVERIFY(!w.button("restoreButton").isVisible());
    }
};

OBLINO_TEST(tst_earlierversionswindow, QApplication)

#include "tst_earlierversionswindow.moc"
