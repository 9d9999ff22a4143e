#include "boardfixture.h"

#include <support/faultyfilecalls.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/traces.h>
#include <support/unprivileged.h>

#include <tools/pngtext.h>

#include <QtEndian>

#include <sys/stat.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Bytes = std::optional<QByteArray>;

namespace {

const QSize size(720, 480);

// A chunk whose checksum nobody looks at.
QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    const quint32 length = qToBigEndian(quint32(data.size()));
    return QByteArray(reinterpret_cast<const char *>(&length), sizeof length) + type + data + "sum.";
}

} // namespace

class tst_whiteboardsaving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useMemoryForTemporaryFiles(); }

    void whatIsThereStaysUntilSomethingIsDrawn_data()
    {
        const Table<Bytes, bool, bool> row; // the file, whether it is shown, whether it is kept
        const QByteArray good = pngOf(size, Qt::green);
        row("no file", {}, false, false);
        row("an empty one", "", false, false);
        row("a picture of the board", good, true, false);
        row("of another scale", pngOf({1080, 720}, Qt::green), true, false);
        row("of nearly the board's size", pngOf({720, 481}, Qt::green), true, false);
        row("of other proportions", pngOf({720, 700}, Qt::green), true, true);
        row("cut", good.first(good.size() / 2), false, true);
        row("not a picture", "Dear diary", false, true);
        row("a picture of another kind", "P3 1 1 255 0 255 0", false, true);
        row("huge", pngOf({9000, 6000}, Qt::black, QImage::Format_Mono), false, true);
    }
    void whatIsThereStaysUntilSomethingIsDrawn()
    {
        const auto [bytes, isShown, isKept] = Table<Bytes, bool, bool>::cells();
        Board board(bytes);
        const QDateTime before = QFileInfo(board.board).lastModified();
        board.reopen();
        QCOMPARE(board.shown().pixelColor(360, 240), QColor(isShown ? Qt::green : Qt::white));
        QCOMPARE(board.notice().contains(u"was not read: it holds no picture"_s), isKept && !isShown);
        board.reopen();
        QCOMPARE(QFile::exists(board.board), bytes.has_value());
        QCOMPARE(TemporaryHome::content(board.board), bytes.value_or(""));
        QCOMPARE(QFileInfo(board.board).lastModified(), before);
        QCOMPARE(board.home.kept(), QByteArrayList());

        board.stroke(dash);
        QCOMPARE(board.notice().contains(u"It was copied to "_s), isKept);
        board.stroke(corner);
        QCOMPARE(board.at({{450, 100}, {100, 200}}), (Colors{Qt::black, Qt::black}));
        QCOMPARE(board.home.kept(), isKept ? QByteArrayList{*bytes} : QByteArrayList());
    }

    void aFileTooLargeToReadIsMoved()
    {
        Board board;
        QFile huge(board.board);
        QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize((64 << 20) + 1)); // a hole
        board.reopen();
        QVERIFY2(board.notice().contains(u"it has more than 64 MiB"_s), qPrintable(board.notice()));
        board.stroke(dash);
        QVERIFY2(board.notice().contains(u"It was moved to "_s), qPrintable(board.notice()));
        QCOMPARE(board.at({{450, 100}}), Colors{Qt::black});
        QCOMPARE(board.home.kept().first().size(), (64 << 20) + 1);
    }

    void aStrokeUnderWayIsInThePictureOnce()
    {
        Board board;
        board.pick({0, 0, 1, 0.5}); // what lay twice would show
        board.stroke(dash);
        const QColor once = board.at({{450, 100}}).first();
        board.begin(corner.first(2));
        QCOMPARE(board.window->saveNow(), QString());
        QVERIFY(!board.window->isUnsaved());
        QCOMPARE(board.at({{100, 200}}), Colors{once});
        QTest::mouseMove(&board.area(), corner.last());
        QVERIFY(board.window->isUnsaved());
        board.window->hide();
        QVERIFY(!board.window->isUnsaved());
        QCOMPARE(board.at({{100, 200}, {200, 300}, {450, 100}}), (Colors{once, once, once}));
        board.window->show();
        QTest::mouseMove(&board.area(), {500, 300});
        board.end({500, 300});
        QCOMPARE(board.shown(), board.saved());
        QCOMPARE(board.at({{100, 200}, {400, 300}}), (Colors{once, Qt::white}));
    }

    void aClosedBoardWhosePictureIsInNoFileStillSavesOrRescuesIt()
    {
        const Board board;
        QVERIFY(QDir().mkdir(board.board)); // no file can be put there
        const QByteArray traces = tracesOf([&] { board.stroke(dash); });
        QVERIFY2(traces.contains("\ncaught: "), traces);
        QVERIFY2(board.notice().startsWith(u"Not saved: "_s), qPrintable(board.notice()));
        const auto &label = find<NoticeLabel>(*board.window, "notice");
        QVERIFY(label.isVisible() && label.geometry().top() >= 540);
        QVERIFY(board.window->rect().contains(label.geometry()));
        QCOMPARE(board.area().geometry(), QRect({}, size));

        board.begin(corner);
        board.close();
        QVERIFY(board.window && board.window->isUnsaved());
        QVERIFY(board.window->saveNow().contains(u"could not be saved"_s));
        const QString rescued = board.window->rescue();
        QVERIFY2(rescued.endsWith(board.window->unsavedFileName()), qPrintable(rescued));

        QVERIFY(QDir().rmdir(board.board));
        board.window->show();
        QCOMPARE(board.window->saveNow(), QString());
        QVERIFY(!board.window->isUnsaved() && board.notice().isEmpty());
        QCOMPARE(board.window->height(), 540);
        QCOMPARE(board.at({{450, 100}, {100, 200}}), (Colors{Qt::black, Qt::black}));
        QCOMPARE(TemporaryHome::content(rescued), TemporaryHome::content(board.board));
    }

    void aDiscardedPictureIsNotWritten()
    {
        const Board board;
        QVERIFY(QDir().mkdir(board.board));
        board.stroke(dash);
        QVERIFY(QDir().rmdir(board.board));
        board.window->discard();
        delete board.window;
        QVERIFY(!QFile::exists(board.board));
    }

    void aLinkOfAnotherUserInASharedFolderIsNotFollowed_data()
    {
        const Table<uid_t, uid_t, mode_t, bool> row; // owners of link and folder, folder's mode, followed
        row("our own in a shared folder", ::geteuid(), 0, 01777, true);
        row("another's in our folder", nobody, ::geteuid(), 0755, true);
        row("another's in a folder for all, sticky", nobody, 0, 01777, false);
        row("another's in a group's folder", nobody, ::geteuid(), 0775, false);
        row("another's in that user's folder", nobody, nobody, 0755, false);
    }
    void aLinkOfAnotherUserInASharedFolderIsNotFollowed()
    {
        if (::geteuid() != 0)
            QSKIP("Only root can give a link to another user.");
        const auto [owner, folderOwner, mode, isFollowed] = Table<uid_t, uid_t, mode_t, bool>::cells();
        Board board;
        const QString target = board.home.path(u"target"_s);
        const QByteArray picture = pngOf(size, Qt::green);
        TemporaryHome::write(target, picture);
        QVERIFY(QFile::link(target, board.board));
        QCOMPARE(::lchown(QFile::encodeName(board.board), owner, owner), 0);
        const QByteArray folder = QFile::encodeName(board.home.documents());
        QCOMPARE(::chown(folder, folderOwner, folderOwner), 0);
        QCOMPARE(::chmod(folder, mode), 0);

        board.reopen();
        QCOMPARE(board.shown().pixelColor(50, 50), QColor(isFollowed ? Qt::green : Qt::white));
        board.stroke(dash);
        QCOMPARE(TemporaryHome::content(target) == picture, !isFollowed);
        QCOMPARE(board.window->isUnsaved(), !isFollowed);
        QCOMPARE(board.notice().contains(u"Not saved: it is a link of another user"_s), !isFollowed);
        QCOMPARE(WhiteboardFile(board.home.privateFolder()).erase(board.board).isEmpty(), isFollowed);
        QCOMPARE(QFile::exists(target), !isFollowed);
        board.window->discard();
    }

    void textsAreTakenOutOfAPng_data()
    {
        const Table<QByteArray, QByteArray> row;
        const QByteArray picture = "\x89PNG\r\n\x1a\n" + chunk("IHDR", "size") + chunk("IDAT", "pixels");
        const QByteArray text = chunk("tEXt", "a") + chunk("zTXt", "bb") + chunk("iTXt", "");
        const QByteArray endless = "\xff\xff\xff\xff";
        row("texts before and behind other chunks", picture + text + chunk("tIME", "t") + text,
            picture + chunk("tIME", "t"));
        row("a text that is cut off", picture + chunk("zTXt", "abcdef").chopped(3), picture);
        row("a text of 4 GiB, it says", picture + endless + "zTXt" + picture, picture);
        row("a chunk of 4 GiB, it says", picture + endless + "IDAT" + text,
            picture + endless + "IDAT" + text);
        row("a rest that is no chunk", picture + "zTXt", picture + "zTXt");
        row("less than a signature", "\x89PN", "\x89PN");
    }
    void textsAreTakenOutOfAPng()
    {
        const auto [png, expected] = Table<QByteArray, QByteArray>::cells();
        QCOMPARE(withoutPngText(png), expected);
    }

    void aTextInAPictureIsNotExpanded()
    {
        const Board board(pngOf(size, Qt::green, QImage::Format_RGB32, QString(1 << 20, u'a')));
        QCOMPARE(board.saved().text(u"Comment"_s).size(), 1 << 20); // a plain reader expands it
        const QImage picture = WhiteboardFile(board.home.privateFolder()).read(board.board, size).picture;
        QCOMPARE(picture.pixelColor(1, 1), QColor(Qt::green));
        QCOMPARE(picture.textKeys(), QStringList());
    }

    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved_data()
    {
        const Table<Bytes, Bytes, int> row; // before, by another program, what goes wrong
        row("the first save, disk faulty", {}, {}, EIO);
        row("over an earlier picture, half written", pngOf(size, Qt::green), {}, FaultyFileCalls::half);
        row("over another program's, disk full", pngOf(size, Qt::green), pngOf(size, Qt::red), ENOSPC);
    }
    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved()
    {
        const auto [before, other, fault] = Table<Bytes, Bytes, int>::cells();
        const Colors drawn = {Qt::black, before ? Qt::green : Qt::white};
        bool hasStruck = true;
        for (int call = 1; hasStruck; ++call) {
            FaultyFileCalls calls;
            const Board board(before, calls);
            if (other)
                TemporaryHome::write(board.board, *other);
            calls.arm(call, fault);
            board.stroke(corner); // it is saved, and read back
            hasStruck = calls.hasStruck();
            calls.arm(0, 0);
            const QString at = u"call %1: %2"_s.arg(call).arg(board.notice());
            QVERIFY2(board.window->isUnsaved() || board.at({{100, 200}, {50, 50}}) == drawn, qPrintable(at));
            QCOMPARE(board.shown().pixelColor(100, 200), QColor(Qt::black));

            QCOMPARE(board.window->saveNow(), QString());
            QVERIFY2(!board.window->isUnsaved() && !board.notice().startsWith(u"Not"_s), qPrintable(at));
            QCOMPARE(board.at({{100, 200}, {50, 50}}), drawn);
            QVERIFY2(!other || board.home.kept().contains(*other), qPrintable(at));
        }
    }
};

OBLINO_TEST(tst_whiteboardsaving, QApplication)

#include "tst_whiteboardsaving.moc"
