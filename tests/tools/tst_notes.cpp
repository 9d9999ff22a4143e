#include "toolhome.h"

#include <support/faultyfilecalls.h>
#include <support/place.h>

#include <base/datakind.h>
#include <controls/noticelabel.h>
#include <tools/windows/viewcontrollernotes.h>

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

    void aTextKeepsItsBytesAndItsLineEnds_data()
    {
        const Table<QByteArray, QString, QByteArray> row; // in the file, then in the pad, then in the file
        const QByteArray mixed = "a\r\nb\nc\rd\u2029e";
        row("beyond ASCII, a byte order mark", "\ufeffÄ 日本 \U0001F600\n", u"\ufeffÄ 日本 \U0001F600\nx"_s,
            "\ufeffÄ 日本 \U0001F600\nx");
        row("NUL, a no-break blank and U+2028", QByteArray("\0\u00a0b\u2028c", 8), u"\0\u00a0b\u2028x"_s,
            QByteArray("\0\u00a0b\u2028x", 8));
        row("edits in the first and the last line", mixed, u"ax\nb\nc\nd\nex"_s, "ax\r\nb\nc\rd\u2029ex");
        row("a new line", mixed, u"a\nb\nx\nc\nd\ne"_s, "a\r\nb\nx\nc\rd\u2029e");
        row("at the end", mixed, u"a\nb\nc\nd\ne\nx"_s, mixed + "\r\nx");
        row("at the start", mixed, u"x\na\nb\nc\nd\ne"_s, "x\r\n" + mixed);
        row("a line less", mixed, u"a\nc\nd\ne"_s, "a\r\nc\rd\u2029e");
        row("the same line again", "a\na\r\na", u"a\na\na\na"_s, "a\na\r\na\r\na");
    }
    void aTextKeepsItsBytesAndItsLineEnds()
    {
        const auto [bytes, edited, expected] = Table<QByteArray, QString, QByteArray>::cells();
        const Notes notes(bytes);
        notes.edit().selectAll();
        notes.edit().insertPlainText(edited);
        notes.pad->hide();
        QCOMPARE(notes.saved(), expected);
        QCOMPARE(notes.home.kept(), QByteArrayList());
    }

    void savesWhileItIsShownAndSoonAfterTheLastKey()
    {
        Notes notes({}, 5ms);
        notes.type(u"a"_s);
        QTRY_COMPARE(notes.saved(), "a");
        QVERIFY(QFile::remove(notes.notes)); // an open pad writes it again
        QTRY_COMPARE(notes.saved(), "a");
        notes.pad->hide();
        QCOMPARE(tracesOf([&] { QTest::qWait(50); }), "");
        notes.appearance.setInterfaceStyle(u"Dark"_s);
        QCOMPARE(notes.edit().palette().color(QPalette::Text), QColor(Qt::black));
        notes.pad->show();
        QCOMPARE(notes.edit().palette().color(QPalette::Text), QColor(Qt::white));
        QVERIFY(tracesOf([&] { notes.pad->tick(QTimer()); }).endsWith("Write File\nSaved File\n"));

        const Notes quick({}, 30s, 5ms);
        quick.type(u"Call Dana"_s);
        QTRY_COMPARE(quick.saved(), "Call Dana");
        const struct stat before = statusOf(quick.notes);
        QVERIFY(quick.pad->saveToFile());
        QVERIFY(isUntouched(before, statusOf(quick.notes)));
    }

    void undoesTypingByKeysButNothingThatWasErased()
    {
        const Notes notes(twoLines);
        const auto textAfter = [&notes](const char *keys) -> QString {
            QTest::keySequence(&notes.edit(), QKeySequence(QLatin1String(keys)));
            return notes.edit().toPlainText();
        };
        QCOMPARE(namelessIn(*notes.pad), QString());
        const QString before = notes.edit().toPlainText();
        notes.type(u"three"_s);
        QCOMPARE(textAfter("Ctrl+Z"), before);
        QCOMPARE(textAfter("Ctrl+Shift+Z"), before + u"three"_s);
        textAfter("Ctrl+A");
        QCOMPARE(textAfter("Del"), QString());
        notes.pad->dataErased(DataKind::Notes);
        QCOMPARE(textAfter("Ctrl+Z"), QString());
    }

    void whateverBecomesOfTheFileNoTextIsLost_data()
    {
        const Table<Bytes, QString, QByteArrayList> row; // the file then, why it is not shown, what is kept
        row("a line changed", "one\r\n2\r\n", {}, {twoLines});
        row("a line more", twoLines + "three", {}, {});
        row("a line less", "one\r\n", {}, {twoLines});
        row("another beginning", "Ä\r\ntwo lines\r\n", {}, {twoLines});
        row("emptied", "", u"another program has emptied"_s, {""});
        row("cut short", "one\r\ntwo", u"another program has cut"_s, {"one\r\ntwo"});
        row("not valid UTF-8", "caf\xe9", u"is not valid UTF-8."_s, {"caf\xe9"});
        row("removed", {}, u"There is no file"_s, {});
    }
    void whateverBecomesOfTheFileNoTextIsLost()
    {
        const auto [bytes, why, kept] = Table<Bytes, QString, QByteArrayList>::cells();
        const Notes notes(twoLines);
        QFile::remove(notes.notes);
        if (bytes)
            TemporaryHome::write(notes.notes, *bytes);
        const bool isShown = why.isEmpty();
        const QString said = isShown ? u"changed by another program and has been read"_s : why;
        QTRY_VERIFY2(notes.notice().contains(said), qPrintable(notes.notice()));
        QVERIFY(notes.notice().startsWith(u"Not saved: "_s) != isShown && notes.pad->isUnsaved() != isShown);
        QCOMPARE(notes.pad->unsavedContent(), isShown ? *bytes : twoLines);
        QCOMPARE(notes.pad->saveNow(), QString());
        QVERIFY(!notes.notice().contains(u"Not saved"_s) && !notes.pad->isUnsaved());
        QCOMPARE(notes.saved(), isShown ? *bytes : twoLines);
        QCOMPARE(notes.home.kept(), kept);
        notes.edit().undo();
        QCOMPARE(notes.edit().toPlainText(), u"one\ntwo lines\n"_s);
    }

    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved_data()
    {
        const Table<QByteArray, Bytes, QString, int>
            row; // before, by another program, typed, what goes wrong
        row("over an earlier text, killed", "one\n", {}, u"two"_s, FaultyFileCalls::deathMidway);
        row("over another program's, disk full", "one\n", "three\n", u"two"_s, ENOSPC);
        row("of a text that another program has emptied, disk faulty", "one\ntwo\n", "", u""_s, EIO);
    }
    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved()
    {
        const auto [before, other, typed, fault] = Table<QByteArray, Bytes, QString, int>::cells();
        const QByteArray text = before + typed.toUtf8();
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
            QVERIFY2(notes.pad->saveNow().isEmpty() && !notes.pad->isUnsaved(), qPrintable(at));
            QVERIFY2(notes.saved() == text && notes.pad->unsavedContent() == text, qPrintable(at));
            QVERIFY2(!other || notes.home.kept().contains(*other), qPrintable(at));
            QVERIFY2(hasStruck || !other || at.contains(u"was copied to "_s), qPrintable(at));
        }
    }
};

OBLINO_TEST(tst_notes, QApplication)

#include "tst_notes.moc"
