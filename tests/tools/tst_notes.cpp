#include "toolhome.h"

#include <support/faultyfilecalls.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <controls/noticelabel.h>
#include <tools/lineends.h>
#include <tools/windows/viewcontrollernotes.h>

#include <QPointer>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Bytes = std::optional<QByteArray>;

namespace {

const QByteArray twoLines = "one\r\ntwo lines\r\n";

// A home with a notes file or none, and a pad on it.
struct Notes : ToolHome
{
    explicit Notes(const Bytes &bytes = {}, std::chrono::milliseconds interval = 30s,
                   std::chrono::milliseconds afterLastKey = 30s, FileCalls &calls = FileCalls::posix())
        : ToolHome(calls)
    {
        if (bytes)
            TemporaryHome::write(notes, *bytes);
        pad = new ViewControllerNotes(store, documents, nullptr, interval, afterLastKey);
        pad->setAttribute(Qt::WA_DeleteOnClose);
        pad->show();
    }
    ~Notes() { delete pad; }

    [[nodiscard]] QPlainTextEdit &edit() const { return find<QPlainTextEdit>(*pad, "textEdit"); }
    [[nodiscard]] QString notice() const { return find<NoticeLabel>(*pad, "notice").notice(); }
    void type(const QString &text) const { QTest::keyClicks(&edit(), text); }
    void close() const
    {
        pad->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    [[nodiscard]] QByteArray saved() const { return TemporaryHome::content(notes); }

    QPointer<ViewControllerNotes> pad;
};

} // namespace

class tst_notes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useMemoryForTemporaryFiles(); }

    void theFirstPadIsEmptyMakesTheFileAndIsGoneOnceItIsClosed()
    {
        std::unique_ptr<Notes> notes;
        const QByteArray traces = tracesOf([&] { notes = std::make_unique<Notes>(); });
        QVERIFY2(traces.startsWith("Error ") && traces.count('\n') == 1, traces);
        QVERIFY(!QFile::exists(notes->notes));
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
        row("beyond ASCII", "Ä 日本 \U0001F600", "Ä 日本 \U0001F600x");
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
        QVERIFY(QFile::remove(notes.notes));
        notes.type(u"y"_s);
        notes.edit().undo();
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(notes.saved(), bytes);

        notes.type(u"x"_s);
        notes.pad->hide();
        QCOMPARE(notes.saved(), edited);
        QCOMPARE(notes.home.kept(), QByteArrayList());
    }

    void linesKeepTheirEnds_data()
    {
        const Table<QString, QString, QString> row; // in the file, in the pad, then in the file
        const QString mixed = u"a\r\nb\nc\rd\u2029e\ufdd0f"_s;
        row("an edit in the first and the last line", mixed, u"ax\u2029b\u2029c\u2029d\u2029e\u2029fx"_s,
            u"ax\r\nb\nc\rd\u2029e\ufdd0fx"_s);
        row("a new line", mixed, u"a\u2029b\u2029x\u2029c\u2029d\u2029e\u2029f"_s,
            u"a\r\nb\nx\nc\rd\u2029e\ufdd0f"_s);
        row("at the end", mixed, u"a\u2029b\u2029c\u2029d\u2029e\u2029f\u2029x"_s, mixed + u"\r\nx"_s);
        row("at the start", mixed, u"x\u2029a\u2029b\u2029c\u2029d\u2029e\u2029f"_s, u"x\r\n"_s + mixed);
        row("a line less", mixed, u"a\u2029c\u2029d\u2029e\u2029f"_s, u"a\r\nc\rd\u2029e\ufdd0f"_s);
        row("the same line again", u"a\na\r\na"_s, u"a\u2029a\u2029a\u2029a"_s, u"a\na\r\na\r\na"_s);
        row("from nothing", u""_s, u"a\u2029"_s, u"a\n"_s);
    }
    void linesKeepTheirEnds()
    {
        const auto [original, edited, expected] = Table<QString, QString, QString>::cells();
        QCOMPARE(withLineEnds(edited, original), expected);
    }

    void invalidBytesAreKeptAside()
    {
        for (const QByteArray bytes : {"caf\xe9", "a character cut at the end\xe6\x97"}) {
            const Notes notes(bytes);
            QVERIFY2(notes.notice().contains(u"is not valid UTF-8."_s), qPrintable(notes.notice()));
            QCOMPARE(notes.saved(), bytes);
            notes.pad->hide();
            QVERIFY2(notes.notice().contains(u"was copied to "_s), qPrintable(notes.notice()));
            QCOMPARE(notes.saved(), "");
            QCOMPARE(notes.home.kept(), QByteArrayList{bytes});
        }
    }

    void savesWhileItIsShownOnly()
    {
        const Notes notes({}, 5ms);
        notes.type(u"a"_s);
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(QFile::remove(notes.notes)); // an open pad writes it again
        QTRY_COMPARE(notes.saved(), "a");

        notes.pad->hide();
        QVERIFY(QFile::remove(notes.notes));
        QTest::qWait(50);
        QVERIFY(!QFile::exists(notes.notes));
        notes.pad->show();
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(tracesOf([&] { notes.pad->tick(QTimer()); }).endsWith("Write File\nSaved File\n"));
    }

    void savesSoonAfterTheLastKeyAndNotWhatIsThereAlready()
    {
        const Notes notes({}, 30s, 5ms);
        const QByteArray traces = tracesOf([&] {
            notes.type(u"Call Dana"_s);
            QTRY_COMPARE(notes.saved(), "Call Dana");
        });
        QVERIFY2(traces.endsWith("Write File\n") && !traces.contains("Saved File"), traces);
        const QDateTime before = QFileInfo(notes.notes).lastModified();
        QTest::qSleep(20); // a later writing has a later time
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(QFileInfo(notes.notes).lastModified(), before);
    }

    void whatAnotherProgramMakesOfTheFileIsShown_data()
    {
        const Table<QByteArray, bool, QString, QByteArrayList> row; // bytes, in place, as shown, what is kept
        row("a line changed", "one\r\n2\r\n", true, u"one\n2\n"_s, {twoLines});
        row("a line more", twoLines + "three", false, u"one\ntwo lines\nthree"_s, {});
        row("a line less", "one\r\n", false, u"one\n"_s, {twoLines});
        row("another beginning", "Ä\r\ntwo lines\r\n", true, u"Ä\ntwo lines\n"_s, {twoLines});
    }
    void whatAnotherProgramMakesOfTheFileIsShown()
    {
        const auto [bytes, isInPlace, shown, kept] =
            Table<QByteArray, bool, QString, QByteArrayList>::cells();
        const Notes notes(twoLines);
        const QString other = isInPlace ? notes.notes : notes.home.path(u"new"_s);
        TemporaryHome::write(other, bytes);
        if (!isInPlace)
            QCOMPARE(::rename(QFile::encodeName(other), QFile::encodeName(notes.notes)), 0);
        QTRY_COMPARE(notes.edit().toPlainText(), shown);
        QVERIFY(!notes.pad->isUnsaved());
        QVERIFY2(notes.notice().contains(u"changed by another program and has been read again"_s),
                 qPrintable(notes.notice()));
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(notes.saved(), bytes);
        QCOMPARE(notes.home.kept(), kept);

        notes.edit().undo();
        QCOMPARE(notes.edit().toPlainText(), u"one\ntwo lines\n"_s);
    }

    void aTextStaysInThePadWhateverBecomesOfTheFile_data()
    {
        const Table<Bytes, QString, QByteArrayList> row; // the file then, why not saved, what is kept
        row("emptied", "", u"another program has emptied"_s, {""});
        row("cut short", "one\r\ntwo", u"another program has cut"_s, {"one\r\ntwo"});
        row("not valid UTF-8", "caf\xe9", u"is not valid UTF-8."_s, {"caf\xe9"});
        row("removed", {}, u"There is no file"_s, {});
    }
    void aTextStaysInThePadWhateverBecomesOfTheFile()
    {
        const auto [bytes, why, kept] = Table<Bytes, QString, QByteArrayList>::cells();
        const Notes notes(twoLines);
        if (bytes)
            TemporaryHome::write(notes.notes, *bytes);
        else
            QVERIFY(QFile::remove(notes.notes));
        QTRY_VERIFY2(notes.notice().contains(why), qPrintable(notes.notice()));
        QVERIFY(notes.notice().startsWith(u"Not saved: "_s) && notes.pad->isUnsaved());
        QCOMPARE(notes.edit().toPlainText(), u"one\ntwo lines\n"_s);
        QCOMPARE(notes.pad->unsavedContent(), twoLines);
        QCOMPARE(notes.pad->saveNow(), QString());
        QVERIFY(!notes.notice().contains(u"Not saved"_s) && !notes.pad->isUnsaved());
        QCOMPARE(notes.saved(), twoLines);
        QCOMPARE(notes.home.kept(), kept);
    }

    void aFolderThatWasAwayComesBack()
    {
        const Notes notes(twoLines);
        const QString away = notes.home.documents() + u".away"_s;
        QVERIFY(QFile::rename(notes.home.documents(), away));
        QTRY_VERIFY(notes.pad->isUnsaved());
        QVERIFY(QFile::rename(away, notes.home.documents()));
        QTRY_VERIFY(!notes.pad->isUnsaved());
        QCOMPARE(notes.notice(), QString());
    }

    void anEditedTextStaysAndTheOtherVersionIsKept()
    {
        const Notes notes(twoLines);
        notes.type(u"x"_s);
        TemporaryHome::write(notes.notes, "another program's");
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(notes.saved(), twoLines + "x");
        QVERIFY(notes.home.kept().contains("another program's"));
        QVERIFY2(notes.notice().contains(u"changed by another program. That version was copied to "_s),
                 qPrintable(notes.notice()));
    }

    void aClosedPadWhoseTextIsInNoFileStillRescuesOrSavesIt()
    {
        const Notes notes("a\r\n");
        QVERIFY(QFile::remove(notes.notes) && QDir().mkdir(notes.notes)); // no file can be put there
        notes.type(u"b"_s);
        notes.close();
        QVERIFY(notes.pad && notes.pad->isUnsaved());
        QVERIFY(notes.notice().startsWith(u"Not saved: "_s));
        QVERIFY(notes.pad->saveNow().contains(u"could not be saved"_s));
        const QString rescued = notes.pad->rescue();
        QVERIFY2(rescued.endsWith(notes.pad->unsavedFileName()), qPrintable(rescued));
        QCOMPARE(TemporaryHome::content(rescued), "a\r\nb");
        QVERIFY(QDir().rmdir(notes.notes));
        delete notes.pad;
        QCOMPARE(notes.saved(), "a\r\nb");
    }

    void withoutADocumentsFolderTheTextIsUnsaved()
    {
        ToolHome home;
        Documents none(std::nullopt, home.home.privateFolder());
        ViewControllerNotes pad(home.store, none);
        pad.show();
        QVERIFY(!pad.isUnsaved());
        QTest::keyClicks(&find<QPlainTextEdit>(pad, "textEdit"), u"a"_s);
        QCOMPARE(tracesOf([&] { QVERIFY(pad.saveToFile() && pad.isUnsaved()); }), "");
        QCOMPARE(find<NoticeLabel>(pad, "notice").notice(), u"Not saved: there is no documents folder."_s);
        QVERIFY(pad.saveNow().contains(u"no documents folder"_s));
        QCOMPARE(TemporaryHome::content(pad.rescue()), "a");
        pad.discard();
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

    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved_data()
    {
        const Table<Bytes, Bytes, QString, int> row; // before, by another program, typed, what goes wrong
        row("the first save, killed", {}, {}, u"two"_s, FaultyFileCalls::deathMidway);
        row("over an earlier text, half written", "one\n", {}, u"two"_s, FaultyFileCalls::half);
        row("over another program's, disk full", "one\n", "three\n", u"two"_s, ENOSPC);
        row("of a text that another program has emptied, disk faulty", "one\ntwo\n", "", u""_s, EIO);
    }
    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved()
    {
        const auto [before, other, typed, fault] = Table<Bytes, Bytes, QString, int>::cells();
        const QByteArray text = before.value_or("") + typed.toUtf8();
        bool hasStruck = true;
        for (int call = 1; hasStruck; ++call) {
            FaultyFileCalls calls;
            const Notes notes(before, 30s, 30s, calls);
            notes.type(typed);
            if (other)
                TemporaryHome::write(notes.notes, *other);
            calls.arm(call, fault);
            const bool isSaved = notes.pad->saveToFile();
            hasStruck = calls.hasStruck();
            calls.arm(0, 0);
            const QString at = u"call %1: %2"_s.arg(call).arg(notes.notice());
            QVERIFY2(isSaved ? notes.saved() == text : notes.pad->isUnsaved(), qPrintable(at));
            QVERIFY2(isSaved != notes.notice().startsWith(u"Not saved: "_s), qPrintable(at));
            QCOMPARE(notes.edit().toPlainText().toUtf8(), text);
            QCOMPARE(notes.pad->unsavedContent(), text);

            QCOMPARE(notes.pad->saveNow(), QString());
            QVERIFY2(!notes.pad->isUnsaved() && !notes.notice().startsWith(u"Not"_s), qPrintable(at));
            QCOMPARE(notes.edit().toPlainText().toUtf8(), text);
            QCOMPARE(notes.saved(), text);
            QVERIFY2(!other || notes.home.kept().contains(*other), qPrintable(at));
        }
    }
};

OBLINO_TEST(tst_notes, QApplication)

#include "tst_notes.moc"
