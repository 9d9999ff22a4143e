#include "notesfixture.h"

#include <support/faultyfilecalls.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <tools/lineends.h>

#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Deed = std::function<void(const QString &path)>;

namespace {

const QByteArray twoLines = "one\r\ntwo lines\r\n";

} // namespace

class tst_notessaving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useMemoryForTemporaryFiles(); }

    void savesSoonAfterTheLastKey()
    {
        const Notes notes({}, 30s, 5ms);
        const QByteArray traces = tracesOf([&] {
            notes.type(u"Call Dana"_s);
            QTRY_COMPARE(notes.saved(), "Call Dana");
        });
        QVERIFY2(traces.endsWith("Write File\n") && !traces.contains("Saved File"), traces);
    }

    void linesKeepTheirEnds_data()
    {
        const Table<QString, QString, QString> row; // in the file, in the pad, then in the file
        const QString mixed = u"a\r\nb\nc\rd\u2029e\ufdd0f"_s;
        row("an edit in the first line", mixed, u"ax\u2029b\u2029c\u2029d\u2029e\u2029f"_s,
            u"ax\r\nb\nc\rd\u2029e\ufdd0f"_s);
        row("in the first and the last", mixed, u"ax\u2029b\u2029c\u2029d\u2029e\u2029fx"_s,
            u"ax\r\nb\nc\rd\u2029e\ufdd0fx"_s);
        row("a new line", mixed, u"a\u2029b\u2029x\u2029c\u2029d\u2029e\u2029f"_s,
            u"a\r\nb\nx\nc\rd\u2029e\ufdd0f"_s);
        row("two new lines", mixed, u"a\u2029b\u2029x\u2029y\u2029c\u2029d\u2029e\u2029f"_s,
            u"a\r\nb\nx\r\ny\nc\rd\u2029e\ufdd0f"_s);
        row("a new line at the end", mixed, u"a\u2029b\u2029c\u2029d\u2029e\u2029f\u2029x"_s,
            mixed + u"\r\nx"_s);
        row("a new line at the start", mixed, u"x\u2029a\u2029b\u2029c\u2029d\u2029e\u2029f"_s,
            u"x\r\n"_s + mixed);
        row("a line less", mixed, u"a\u2029c\u2029d\u2029e\u2029f"_s, u"a\r\nc\rd\u2029e\ufdd0f"_s);
        row("the same line again", u"a\na\r\na"_s, u"a\u2029a\u2029a\u2029a"_s, u"a\na\r\na\r\na"_s);
        row("one of the same lines less", u"a\na\r\na"_s, u"a\u2029a"_s, u"a\na"_s);
        row("all gone", mixed, u""_s, u""_s);
        row("from nothing", u""_s, u"a\u2029"_s, u"a\n"_s);
    }
    void linesKeepTheirEnds()
    {
        const auto [original, edited, expected] = Table<QString, QString, QString>::cells();
        QCOMPARE(withLineEnds(edited, original), expected);
    }

    void whatAnotherProgramMakesOfTheFileIsShown_data()
    {
        const Table<QByteArray, QString, QByteArrayList> row; // the new content, as shown, what is kept
        row("a line changed", "one\r\n2\r\n", u"one\n2\n"_s, {twoLines});
        row("a line more", twoLines + "three", u"one\ntwo lines\nthree"_s, {});
        row("a line less", "one\r\n", u"one\n"_s, {twoLines});
        row("another beginning", "Ä\r\ntwo lines\r\n", u"Ä\ntwo lines\n"_s, {twoLines});
    }
    void whatAnotherProgramMakesOfTheFileIsShown()
    {
        const auto [bytes, shown, kept] = Table<QByteArray, QString, QByteArrayList>::cells();
        for (const bool isInPlace : {true, false}) {
            const Notes notes(twoLines);
            const QString other = isInPlace ? notes.path : notes.home.path(u"new"_s);
            TemporaryHome::write(other, bytes);
            if (!isInPlace)
                QCOMPARE(::rename(QFile::encodeName(other), QFile::encodeName(notes.path)), 0);
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
    }

    void aTextStaysInThePadWhateverBecomesOfTheFile_data()
    {
        const Table<Deed, QString, QByteArrayList> row; // why it is not saved, what is kept
        const auto putting = [](const QByteArray &bytes) {
            return Deed([=](const QString &path) { TemporaryHome::write(path, bytes); });
        };
        row("emptied", putting(""), u"another program has emptied"_s, {""});
        row("cut short", putting("one\r\ntwo"), u"another program has cut"_s, {"one\r\ntwo"});
        row("not valid UTF-8", putting("caf\xe9"), u"is not valid UTF-8."_s, {"caf\xe9"});
        row("removed", [](const QString &path) { QVERIFY(QFile::remove(path)); }, u"There is no file"_s, {});
    }
    void aTextStaysInThePadWhateverBecomesOfTheFile()
    {
        const auto [deed, why, kept] = Table<Deed, QString, QByteArrayList>::cells();
        const Notes notes(twoLines);
        deed(notes.path);
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
        TemporaryHome::write(notes.path, "another program's");
        QVERIFY(notes.pad->saveToFile());
        QCOMPARE(notes.saved(), twoLines + "x");
        QVERIFY(notes.home.kept().contains("another program's"));
        QVERIFY2(notes.notice().contains(u"changed by another program. That version was copied to "_s),
                 qPrintable(notes.notice()));
    }

    void saysWhatCouldNotBeReadAndWhy()
    {
        const Notes notes("caf\xe9");
        QVERIFY2(notes.notice().contains(u"is not valid UTF-8."_s), qPrintable(notes.notice()));
        notes.type(u"x"_s);
        QVERIFY(notes.pad->saveToFile());
        QVERIFY2(notes.notice().contains(u"was copied to "_s), qPrintable(notes.notice()));
    }

    void aClosedPadWhoseTextIsInNoFileStillSavesOrRescuesIt()
    {
        const Notes notes("a\r\n");
        QVERIFY(QFile::remove(notes.path) && QDir().mkdir(notes.path)); // no file can be put there
        notes.type(u"b"_s);
        notes.close();
        QVERIFY(notes.pad && notes.pad->isUnsaved());
        QVERIFY(notes.notice().startsWith(u"Not saved: "_s));
        QVERIFY(notes.pad->saveNow().contains(u"could not be saved"_s));
        QCOMPARE(notes.pad->unsavedContent(), "a\r\nb");
        const QString rescued = notes.pad->rescue();
        QVERIFY2(rescued.endsWith(notes.pad->unsavedFileName()), qPrintable(rescued));
        QCOMPARE(TemporaryHome::content(rescued), "a\r\nb");

        QVERIFY(QDir().rmdir(notes.path));
        QCOMPARE(notes.pad->saveNow(), QString());
        QVERIFY(!notes.pad->isUnsaved() && notes.notice().isEmpty());
        QCOMPARE(notes.saved(), "a\r\nb");
    }

    void withoutADocumentsFolderTheTextIsUnsaved()
    {
        Store home;
        Documents none(std::nullopt, home.home.privateFolder());
        ViewControllerNotes pad(home.store, none);
        pad.show();
        QVERIFY(!pad.isUnsaved());
        QTest::keyClicks(&find<QPlainTextEdit>(pad, "textEdit"), u"a"_s);
        QVERIFY(pad.saveToFile() && pad.isUnsaved());
        QCOMPARE(find<NoticeLabel>(pad, "notice").notice(), u"Not saved: there is no documents folder."_s);
        QVERIFY(pad.saveNow().contains(u"no documents folder"_s));
        QCOMPARE(TemporaryHome::content(pad.rescue()), "a");
        pad.discard();
    }

    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved_data()
    {
        using Bytes = std::optional<QByteArray>;
        const Table<Bytes, Bytes, QString> row; // before, by another program, typed
        row("the first save", {}, {}, u"two"_s);
        row("over an earlier text", "one\n", {}, u"two"_s);
        row("over another program's", "one\n", "three\n", u"two"_s);
        row("of a text that another program has emptied", "one\ntwo\n", "", u""_s);
    }
    void whateverCallFailsTheTextIsInTheFileOrStillUnsaved()
    {
        using Bytes = std::optional<QByteArray>;
        const auto [before, other, typed] = Table<Bytes, Bytes, QString>::cells();
        const QByteArray text = before.value_or("") + typed.toUtf8();
        for (const int fault : {EIO, ENOSPC, FaultyFileCalls::half, FaultyFileCalls::deathMidway}) {
            bool hasStruck = true;
            for (int call = 1; hasStruck; ++call) {
                FaultyFileCalls calls;
                const Notes notes(before, 30s, 30s, calls);
                notes.type(typed);
                if (other)
                    TemporaryHome::write(notes.path, *other);
                calls.arm(call, fault);
                const bool isSaved = notes.pad->saveToFile();
                hasStruck = calls.hasStruck();
                calls.arm(0, 0);
                const QString at = u"call %1, fault %2: %3"_s.arg(call).arg(fault).arg(notes.notice());
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
    }
};

OBLINO_TEST(tst_notessaving, QApplication)

#include "tst_notessaving.moc"
