#include "notesfixture.h"

#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

class tst_notes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstPadIsEmptyMakesTheFileAndIsGoneOnceItIsClosed()
    {
        std::unique_ptr<Notes> notes;
        const QByteArray traces = tracesOf([&] { notes = std::make_unique<Notes>(); });
        QVERIFY2(traces.startsWith("Error ") && traces.count('\n') == 1, traces);
        QVERIFY(!QFile::exists(notes->path));
        notes->type(u"Call Dana"_s);
        QTest::keyClick(&notes->edit(), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(tracesOf([&] { notes->close(); }), "Write File\n");
        QCOMPARE(notes->saved(), "Call Dana\n");
        QVERIFY(!notes->pad);
    }

    void aTextIsWrittenBackAsItWasRead_data()
    {
        const Table<QByteArray, QByteArray> row;
        row("one line feed at the end", "a\nb\n", "a\nb\nx");
        row("no line feed at the end", "a", "ax");
        row("beyond ASCII", "Ä 日本 \U0001F600", "Ä 日本 \U0001F600x");
        row("CR LF stays CR LF after an edit", "a\r\nb\r\n", "a\r\nb\r\nx");
        row("CR alone", "a\rb", "a\rbx");
        row("mixed line ends", "a\r\nb\nc\rd", "a\r\nb\nc\rdx");
        row("NUL", QByteArray("a\0b", 3), QByteArray("a\0bx", 4));
        row("a no-break blank and U+2028 stay", "a\u00a0b\u2028c", "a\u00a0b\u2028cx");
        row("U+2029 ends a line for the control", "a\u2029b", "a\u2029bx");
        row("a byte order mark", "\ufeffa", "\ufeffax");
        row("an empty file", "", "x");
    }
    void aTextIsWrittenBackAsItWasRead()
    {
        const auto [bytes, edited] = Table<QByteArray, QByteArray>::cells();
        const Notes notes(bytes);
        // Taken away and changed back, so that the pad does write.
        QVERIFY(QFile::remove(notes.path));
        notes.type(u"y"_s);
        notes.edit().undo();
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(notes.saved(), bytes);

        notes.type(u"x"_s);
        notes.pad->hide();
        QCOMPARE(notes.saved(), edited);
        QCOMPARE(notes.home.kept(), QByteArrayList());
    }

    void invalidBytesAreKeptAside()
    {
        for (const QByteArray bytes : {"caf\xe9", "a character cut at the end\xe6\x97"}) {
            const Notes notes(bytes);
            QCOMPARE(notes.saved(), bytes);
            notes.pad->hide();
            QCOMPARE(notes.saved(), "");
            QCOMPARE(notes.home.kept(), QByteArrayList{bytes});
        }
    }

    void savesWhileItIsShownOnly()
    {
        const Notes notes({}, 5ms);
        notes.type(u"a"_s);
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(QFile::remove(notes.path)); // an open pad writes it again
        QTRY_COMPARE(notes.saved(), "a");

        notes.pad->hide();
        QVERIFY(QFile::remove(notes.path));
        QTest::qWait(50);
        QVERIFY(!QFile::exists(notes.path));
        notes.pad->show();
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(tracesOf([&] { notes.pad->tick(QTimer()); }).endsWith("Write File\nSaved File\n"));
    }

    void anUntouchedFileIsNotWrittenAgain()
    {
        const Notes notes("a");
        notes.type(u"b"_s);
        QVERIFY(notes.pad->saveToFile());
        const QDateTime before = QFileInfo(notes.path).lastModified();
        QTest::qSleep(20); // a later writing has a later time
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(QFileInfo(notes.path).lastModified(), before);
    }

    void outlivesItsClosingWhileItsTextIsInNoFile()
    {
        Notes notes;
        notes.type(u"a"_s);
        QVERIFY(QDir().mkdir(notes.path)); // no file can be put there
        const QByteArray traces = tracesOf([&] { QVERIFY(!notes.pad->saveToFile()); });
        QVERIFY2(traces.startsWith("Error "), traces);
        notes.close();
        QVERIFY(notes.pad);
        QVERIFY(QDir().rmdir(notes.path));
        delete notes.pad;
        QCOMPARE(notes.saved(), "a");
    }

    void hasNothingToWriteWithoutADocumentsFolder()
    {
        Store home;
        Documents none(std::nullopt, home.home.privateFolder());
        ViewControllerNotes pad(home.store, none);
        find<QPlainTextEdit>(pad, "textEdit").insertPlainText(u"a"_s);
        QCOMPARE(tracesOf([&] { QVERIFY(pad.saveToFile()); }), "");
    }

    void opensAtTheEndInTheColourOfTheAppearance()
    {
        Notes notes(QByteArray("line\n").repeated(2000));
        const QPlainTextEdit &edit = notes.edit();
        QCOMPARE(edit.verticalScrollBar()->value(), edit.verticalScrollBar()->maximum());
        notes.appearance.setInterfaceStyle(u"Dark"_s);
        QCOMPARE(edit.palette().color(QPalette::Text), QColor(Qt::black));
        notes.pad->hide();
        notes.pad->show();
        QCOMPARE(edit.palette().color(QPalette::Text), QColor(Qt::white));
    }
};

OBLINO_TEST(tst_notes, QApplication)

#include "tst_notes.moc"
