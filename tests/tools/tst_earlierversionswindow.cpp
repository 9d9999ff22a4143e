#include "toolhome.h"

#include <base/noticelog.h>
#include <tools/windows/earlierversionswindow.h>

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

const QByteArray before = row("A", "Order timber") + row("B", "Fix the roof") + row("C", "Sweep");
const QByteArray present = row("A", "Order larch") + row("C", "Sweep") + row("D", "Mow") + row("E", "Rake");
const QByteArray red = pngOf({72, 48}, Qt::red);
const QByteArray blue = pngOf({72, 48}, Qt::blue);

} // namespace

// A home with a list, notes and a board, and the window.
struct Window : ToolHome
{
    explicit Window(bool dark = false)
    {
        appearance.setInterfaceStyle(dark ? std::optional(u"Dark"_s) : std::nullopt);
        fill(present, "notes of now", red);
        notifications.observe(u"reload"_s, &notifications, [this] { QVERIFY(list.saveToFile()); });
    }

    void keep(const QByteArray &bytes, VersionReason reason = VersionReason::Daily,
              const QString &name = u"ltodolist.txt"_s) const
    {
        const QStringList folders = EarlierVersions::standardFolders(home.privateFolder(), home.documents());
        QCOMPARE(EarlierVersions(name, folders).keep(bytes, reason), QString());
    }

    void open(Qt::Key tab = Qt::Key_T)
    {
        window = std::make_unique<EarlierVersionsWindow>(EarlierVersionsData{
            store, list, documents, notifications, utilities, notices, home.privateFolder(),
            [this](DataKind) { return unsaved; }, [this](DataKind kind) { restored += kind; }});
        showActive(*window);
        choose(tab);
    }
    void choose(Qt::Key tab) const { QTest::keyClick(window.get(), tab, Qt::AltModifier); }
    void restore() const { click(*window, "restoreButton"); }
    [[nodiscard]] QTableView &versions() const { return find<QTableView>(*window, "versionTable"); }
    [[nodiscard]] QTableView &look() const { return find<QTableView>(*window, "taskLook"); }
    [[nodiscard]] QString textLook() const { return find<QPlainTextEdit>(*window, "textLook").toPlainText(); }
    [[nodiscard]] bool isEmpty() const { return find<QLabel>(*window, "emptyTitle").isVisible(); }
    [[nodiscard]] QString result() const { return find<QLabel>(*window, "resultLabel").text(); }
    [[nodiscard]] QPushButton &button(const char *name) const { return find<QPushButton>(*window, name); }
    [[nodiscard]] QByteArray file() const { return TemporaryHome::content(home.listPath()); }
    [[nodiscard]] QString differences() const { return columnOf(versions(), differenceColumn); }

    NoticeLog notices;
    QString unsaved;
    QList<DataKind> restored;
    std::unique_ptr<EarlierVersionsWindow> window;
};

class tst_earlierversionswindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhyHowManyAndHowDifferent()
    {
        Window w;
        w.keep(before);
        w.open();
        QCOMPARE(namelessIn(*w.window), QString());
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

        for (int number = 0; number < 30; ++number)
            w.keep(row("A", "Sweep").repeated(2000), VersionReason::Restored);
        w.open();
        QVERIFY(w.differences().endsWith(u"…")); // it is there before it has read them all
        QTRY_VERIFY(!w.differences().contains(u"…"));
    }

    void restoresTheListDuringASearchInTheDark()
    {
        Window w(true);
        w.keep(before);
        w.store.setIsSearching(true);
        w.store.setSearchTerm(u"Mow"_s);
        w.store.search();
        w.store.setSelected(u"C"_s);
        w.open();
        QTest::keyClick(w.window.get(), Qt::Key_R, Qt::AltModifier);
        QTRY_VERIFY2(w.result().startsWith(u"Restored."), qPrintable(w.result()));
        QCOMPARE(w.file(), before);
        QCOMPARE(w.store.fullList().first().color.red(), 0.9);
        QCOMPARE(w.store.getSelectedTask().key, u"C"_s);
        QVERIFY(w.home.kept().contains(present));
        QTRY_VERIFY(w.differences().contains(u"+1 −2 ≠1"_s));
    }

    void restoresNotesAndBoard()
    {
        Window w;
        w.keep("notes of before", VersionReason::Rescued, u"ltodonotes.txt"_s);
        w.keep(blue, VersionReason::Daily, u"ltodolistwhiteboard.png"_s);
        w.unsaved = u"The pad could not be saved."_s;
        w.open(Qt::Key_N);
        QCOMPARE(w.textLook(), u"notes of before"_s);
        w.restore();
        QCOMPARE(w.result(), w.unsaved);
        QCOMPARE(TemporaryHome::content(w.notes), "notes of now");
        w.unsaved.clear();
        w.restore();
        QCOMPARE(TemporaryHome::content(w.notes), "notes of before");
        QCOMPARE(w.home.kept(), QByteArrayList{"notes of now"}); // what was rescued is where it belongs
        w.choose(Qt::Key_W);
        w.restore();
        QCOMPARE(TemporaryHome::content(w.board), blue);
        QVERIFY(w.home.kept().contains(red));
        QCOMPARE(w.restored, (QList{DataKind::Notes, DataKind::Whiteboard}));

        w.choose(Qt::Key_N); // a version that is erased is not shown any longer
        QCOMPARE(w.documents.erase(u"ltodonotes.txt"_s), QString());
        w.window->dataErased(DataKind::Notes);
        QVERIFY(w.textLook().isEmpty() && w.isEmpty());
    }

    void restoresNothingThatItCannotUndoAndDeletesAfterAQuestion()
    {
        Window w;
        w.keep(before);
        w.open();
        // No file can be added to a folder that is none.
        const QString recovery = w.home.privateFolder() + u"/recovery"_s;
        QVERIFY(QDir().rename(recovery, recovery + u" moved"_s));
        TemporaryHome::write(recovery, {});
        w.restore();
        QVERIFY2(w.result().contains(u"could not be kept, so nothing was restored"), qPrintable(w.result()));
        QVERIFY(w.file() == present && w.store.fullList().size() == 4);

        QVERIFY(QFile::remove(recovery) && QDir().rename(recovery + u" moved"_s, recovery));
        w.questions.answer = 1;
        w.versions().setFocus();
        QTest::keyClick(&w.versions(), Qt::Key_Delete);
        QVERIFY(w.questions.asked.size() == 1 && !w.isEmpty());
        w.questions.answer = 0;
        click(*w.window, "deleteButton");
        QCOMPARE(keptIn(w.home.privateFolder(), true), QByteArrayList());
        QVERIFY(w.isEmpty() && !w.button("deleteButton").isEnabled());
    }
};

OBLINO_TEST(tst_earlierversionswindow, QApplication)

#include "tst_earlierversionswindow.moc"
