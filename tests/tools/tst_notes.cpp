#include <support/store.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <tools/windows/viewcontrollernotes.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScrollBar>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

// A home with a notes file of a test's own, and pads on it.
struct Notes : Store
{
    std::unique_ptr<ViewControllerNotes> open(std::chrono::milliseconds interval = 30s)
    {
        auto pad = std::make_unique<ViewControllerNotes>(store, documents, nullptr, interval);
        pad->show();
        return pad;
    }

    static QPlainTextEdit &edit(const ViewControllerNotes &pad)
    {
        return *pad.findChild<QPlainTextEdit *>(u"textEdit"_s);
    }

    [[nodiscard]] QByteArray saved() const { return TemporaryHome::content(path); }

    QString path = home.documents() + u"/ltodonotes.txt"_s;
    Documents documents{home.documents(), home.privateFolder()};
};

} // namespace

class tst_notes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstPadIsEmptyAndMakesTheFile()
    {
        Notes notes;
        std::unique_ptr<ViewControllerNotes> pad;
        const QByteArray traces = tracesOf([&] { pad = notes.open(); });
        QVERIFY2(traces.startsWith("Error ") && traces.count('\n') == 1, traces);
        QCOMPARE(notes.edit(*pad).toPlainText(), QString());
        QVERIFY(!QFile::exists(notes.path));
        QTest::keyClicks(&notes.edit(*pad), u"Call Dana"_s);
        QCOMPARE(tracesOf([&] { pad->hide(); }), "Write File\n");
        QCOMPARE(notes.saved(), "Call Dana");
    }

    void aTextIsWrittenBackAsItWasRead_data()
    {
        const Table<QByteArray, QByteArray> row;
        row("one line feed at the end", "a\nb\n", "a\nb\nx");
        row("no line feed at the end", "a", "ax");
        row("beyond ASCII", "Ä 日本 \xf0\x9f\x98\x80", "Ä 日本 \xf0\x9f\x98\x80x");
        row("CR LF stays CR LF after an edit", "a\r\nb\r\n", "a\r\nb\r\nx");
        row("CR alone", "a\rb", "a\rbx");
        row("mixed line ends become the first one by an edit", "a\r\nb\nc\rd", "a\r\nb\r\nc\r\ndx");
        row("NUL", QByteArray("a\0b", 3), QByteArray("a\0bx", 4));
        row("a no-break blank and U+2028 are no blank and no line feed", "a\u00a0b\u2028c",
            "a\u00a0b\u2028cx");
        row("U+2029 ends a line for the control", "a\u2029b", "a\nbx");
        row("a byte order mark",
            "\xef\xbb\xbf"
            "a",
            "\xef\xbb\xbf"
            "ax");
        row("an empty file", "", "x");
    }
    void aTextIsWrittenBackAsItWasRead()
    {
        const auto [bytes, edited] = Table<QByteArray, QByteArray>::cells();
        Notes notes;
        TemporaryHome::write(notes.path, bytes);
        auto pad = notes.open();
        // Taken away and changed back, so that the pad does write.
        QVERIFY(QFile::remove(notes.path));
        QTest::keyClicks(&notes.edit(*pad), u"y"_s);
        notes.edit(*pad).undo();
        QVERIFY(pad->saveToFile());
        QCOMPARE(notes.saved(), bytes);

        QTest::keyClicks(&notes.edit(*pad), u"x"_s);
        pad->hide();
        QCOMPARE(notes.saved(), edited);
        QCOMPARE(notes.home.kept(), QByteArrayList());
    }

    void invalidBytesAreKeptAside_data()
    {
        const Table<QByteArray> row;
        row("a lone byte", "caf\xe9");
        row("a character cut at the end", "a\xe6\x97");
    }
    void invalidBytesAreKeptAside()
    {
        const auto [bytes] = Table<QByteArray>::cells();
        Notes notes;
        TemporaryHome::write(notes.path, bytes);
        auto pad = notes.open();
        QCOMPARE(notes.edit(*pad).toPlainText(), QString());
        QCOMPARE(notes.saved(), bytes);
        pad->hide();
        QCOMPARE(notes.saved(), "");
        QCOMPARE(notes.home.kept(), QByteArrayList{bytes});
    }

    void savesWhileItIsShownOnly()
    {
        Notes notes;
        auto pad = notes.open(5ms);
        QTest::keyClicks(&notes.edit(*pad), u"a"_s);
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(QFile::remove(notes.path)); // an open pad writes it again
        QTRY_COMPARE(notes.saved(), "a");

        pad->hide();
        QVERIFY(QFile::remove(notes.path));
        QTest::qWait(50);
        QVERIFY(!QFile::exists(notes.path));
        pad->show();
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(tracesOf([&] { pad->tick(QTimer()); }).endsWith("Write File\nSaved File\n"));
    }

    void anUntouchedFileIsNotWrittenAgain()
    {
        Notes notes;
        TemporaryHome::write(notes.path, "a");
        auto pad = notes.open();
        QTest::keyClicks(&notes.edit(*pad), u"b"_s);
        QVERIFY(pad->saveToFile());
        const QDateTime before = QFileInfo(notes.path).lastModified();
        QTest::qSleep(20); // a later writing has a later time
        QVERIFY(pad->saveToFile());
        QCOMPARE(QFileInfo(notes.path).lastModified(), before);

        TemporaryHome::write(notes.path, "another program's");
        QVERIFY(pad->saveToFile());
        QCOMPARE(notes.saved(), "ab");
        QCOMPARE(notes.home.kept(), QByteArrayList{"another program's"});
    }

    void outlivesItsClosingWhileItsTextIsInNoFile()
    {
        Notes notes;
        QPointer<ViewControllerNotes> pad = notes.open().release();
        pad->setAttribute(Qt::WA_DeleteOnClose);
        QTest::keyClicks(&notes.edit(*pad), u"a"_s);
        QVERIFY(QDir(notes.home.documents()).mkdir(u"ltodonotes.txt"_s)); // no file can be put there
        const QByteArray traces = tracesOf([&] { QVERIFY(!pad->saveToFile()); });
        QVERIFY2(traces.startsWith("Error "), traces);
        pad->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(pad);
        QVERIFY(QDir().rmdir(notes.path));
        delete pad;
        QCOMPARE(notes.saved(), "a");
    }

    void aClosedPadIsGone()
    {
        Notes notes;
        QPointer<ViewControllerNotes> pad = notes.open().release();
        pad->setAttribute(Qt::WA_DeleteOnClose);
        QTest::keyClicks(&notes.edit(*pad), u"a"_s);
        pad->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!pad);
        QCOMPARE(notes.saved(), "a");
    }

    void hasNothingToWriteWithoutADocumentsFolder()
    {
        Notes notes;
        Documents none(std::nullopt, notes.home.privateFolder());
        ViewControllerNotes pad(notes.store, none);
        QTest::keyClicks(&notes.edit(pad), u"a"_s);
        QCOMPARE(tracesOf([&] { QVERIFY(pad.saveToFile()); }), "");
    }

    void opensAtTheEndInTheColourOfTheAppearance()
    {
        Notes notes;
        TemporaryHome::write(notes.path, QByteArray("line\n").repeated(2000));
        auto pad = notes.open();
        const QPlainTextEdit &edit = notes.edit(*pad);
        QCOMPARE(edit.verticalScrollBar()->value(), edit.verticalScrollBar()->maximum());
        QCOMPARE(edit.palette().color(QPalette::Text), QColor(Qt::black));
        notes.appearance.setInterfaceStyle(u"Dark"_s);
        QCOMPARE(edit.palette().color(QPalette::Text), QColor(Qt::black));
        pad->hide();
        pad->show();
        QCOMPARE(edit.palette().color(QPalette::Text), QColor(Qt::white));
    }

    void shiftEnterEndsALine()
    {
        Notes notes;
        auto pad = notes.open();
        QTest::keyClick(&notes.edit(*pad), Qt::Key_Return, Qt::ShiftModifier);
        pad->hide();
        QCOMPARE(notes.saved(), "\n");
    }
};

OBLINO_TEST(tst_notes, QApplication)

#include "tst_notes.moc"
