#include "boardfixture.h"

#include <support/faultyfilecalls.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/unprivileged.h>

#include <tools/pngtext.h>

#include <QtEndian>

#include <sys/stat.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray signature = "\x89PNG\r\n\x1a\n";

QByteArray bigEndian(quint32 number)
{
    const quint32 swapped = qToBigEndian(number);
    return {reinterpret_cast<const char *>(&swapped), sizeof swapped};
}

// A chunk whose checksum nobody looks at.
QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + type + data + "sum.";
}

// The checksum of PNG.
quint32 crc(const QByteArray &bytes)
{
    quint32 sum = ~0U;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ (sum & 1 ? 0xedb88320U : 0);
    }
    return ~sum;
}

// A picture with a compressed text of so many bytes.
QByteArray pngWithText(qsizetype size)
{
    const QByteArray type = "zTXt";
    const QByteArray data = QByteArray("Comment\0\0", 9) + qCompress(QByteArray(size, 'a')).sliced(4);
    const QByteArray png = pngOf({720, 480}, Qt::green);
    constexpr qsizetype header = 8 + 25;
    return png.first(header) + bigEndian(quint32(data.size())) + type + data + bigEndian(crc(type + data)) +
           png.sliced(header);
}

} // namespace

class tst_whiteboardsaving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useMemoryForTemporaryFiles(); }

    void openingAndClosingNeverWrites_data()
    {
        const Table<QByteArray> row;
        const QByteArray good = pngOf({720, 480}, Qt::green);
        row("no file", "");
        row("a picture of the board", good);
        row("of another scale", pngOf({1080, 720}, Qt::green));
        row("of nearly the board's size", pngOf({720, 481}, Qt::green));
        row("of other proportions", pngOf({720, 700}, Qt::green));
        row("a cut one", good.first(good.size() / 2));
        row("not a picture", "Dear diary");
    }
    void openingAndClosingNeverWrites()
    {
        const auto [bytes] = Table<QByteArray>::cells();
        Board board(bytes);
        const QDateTime before = QFileInfo(board.path).lastModified();
        board.reopen();
        board.window->close();
        QCOMPARE(QFile::exists(board.path), !bytes.isEmpty());
        QCOMPARE(TemporaryHome::content(board.path), bytes);
        QCOMPARE(QFileInfo(board.path).lastModified(), before);
        QCOMPARE(board.home.kept(), QByteArrayList());
    }

    void aStrokeUnderWayIsInThePictureWhenTheWindowGoes()
    {
        Board board;
        board.pick({0, 0, 1, 0.5}); // what lay twice would show
        board.stroke(dash);
        const QColor once = board.at({{450, 100}}).first();
        board.begin(corner);
        QVERIFY(board.window->isUnsaved());
        board.window->hide();
        QVERIFY(!board.window->isUnsaved());
        QCOMPARE(board.at({{100, 200}, {450, 100}}), (Colors{once, once}));
        board.window->show();
        QTest::mouseMove(&board.area(), {500, 300});
        QTest::mouseRelease(&board.area(), Qt::LeftButton, {}, {500, 300});
        QCOMPARE(board.shown(), board.saved());
        QCOMPARE(board.at({{100, 200}, {400, 300}}), (Colors{once, Qt::white}));
    }

    void savingUnderAStrokeDoesNotDrawItTwice()
    {
        Board board;
        board.pick({0, 0, 1, 0.5});
        board.stroke(dash);
        const QColor once = board.at({{450, 100}}).first();
        board.begin(corner.first(2));
        QCOMPARE(board.window->saveNow(), QString());
        QVERIFY(!board.window->isUnsaved());
        QCOMPARE(board.at({{100, 200}}), Colors{once});
        QTest::mouseMove(&board.area(), corner.last());
        QVERIFY(board.window->isUnsaved());
        QTest::mouseRelease(&board.area(), Qt::LeftButton, {}, corner.last());
        QCOMPARE(board.at({{100, 200}, {200, 300}}), (Colors{once, once}));
        QVERIFY(!board.window->isUnsaved());
    }

    void aClosedBoardWhosePictureIsInNoFileStillSavesOrRescuesIt()
    {
        const Board board;
        QVERIFY(QDir().mkdir(board.path)); // no file can be put there
        board.stroke(dash);
        QVERIFY2(board.notice().startsWith(u"Not saved: "_s), qPrintable(board.notice()));
        const auto &label = find<NoticeLabel>(*board.window, "notice");
        QVERIFY(label.isVisible() && label.geometry().top() >= 540);
        QVERIFY(board.window->rect().contains(label.geometry()));
        QCOMPARE(board.area().geometry(), QRect({}, board.size));

        board.begin(corner);
        board.window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(board.window && board.window->isUnsaved());
        QVERIFY(board.window->saveNow().contains(u"could not be saved"_s));
        const QString rescued = board.window->rescue();
        QVERIFY2(rescued.endsWith(board.window->unsavedFileName()), qPrintable(rescued));
        const QByteArray png = TemporaryHome::content(rescued);
        QCOMPARE(png, board.window->unsavedContent());

        QVERIFY(QDir().rmdir(board.path));
        QCOMPARE(board.window->saveNow(), QString());
        QVERIFY(!board.window->isUnsaved() && board.notice().isEmpty());
        QCOMPARE(board.window->height(), 540);
        QCOMPARE(board.at({{450, 100}, {100, 200}}), (Colors{Qt::black, Qt::black}));
        QCOMPARE(QImage::fromData(png), board.saved());
    }

    void anErasedBoardIsUnsavedUntilTheWindowGoes()
    {
        Board board(pngOf({720, 480}, Qt::green));
        board.questions.answer = 0;
        board.click("deleteButton");
        QVERIFY(board.window->isUnsaved());
        delete board.window; // without being hidden first
        QCOMPARE(board.saved().pixelColor(100, 100), QColor(Qt::white));
    }

    void aDiscardedPictureIsNotWritten()
    {
        const Board board;
        QVERIFY(QDir().mkdir(board.path));
        board.stroke(dash);
        QVERIFY(QDir().rmdir(board.path));
        board.window->discard();
        delete board.window;
        QVERIFY(!QFile::exists(board.path));
    }

    void saysWhatItCouldNotReadAndWhatItKept()
    {
        const Board board("Dear diary");
        QVERIFY2(board.notice().contains(u"was not read: it holds no picture"_s), qPrintable(board.notice()));
        board.stroke(dash);
        QVERIFY2(board.notice().contains(u"It was copied to "_s), qPrintable(board.notice()));
        TemporaryHome::write(board.path, "another program's");
        board.stroke(corner);
        QVERIFY2(board.notice().contains(u"changed by another program. That version was copied to "_s),
                 qPrintable(board.notice()));
    }

    void aLinkOfAnotherUserInASharedFolderIsNotFollowed_data()
    {
        const Table<uid_t, uid_t, mode_t, bool> row; // owners of link and folder, folder's mode, followed
        row("our own in a shared folder", ::geteuid(), 0, 01777, true);
        row("another's in our folder", nobody, ::geteuid(), 0755, true);
        row("another's in a folder for all", nobody, ::geteuid(), 0777, false);
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
        const QByteArray picture = pngOf({720, 480}, Qt::green);
        TemporaryHome::write(target, picture);
        QVERIFY(QFile::link(target, board.path));
        QCOMPARE(::lchown(QFile::encodeName(board.path), owner, owner), 0);
        const QByteArray folder = QFile::encodeName(board.home.documents());
        QCOMPARE(::chown(folder, folderOwner, folderOwner), 0);
        QCOMPARE(::chmod(folder, mode), 0);

        board.reopen();
        QCOMPARE(board.shown().pixelColor(50, 50), QColor(isFollowed ? Qt::green : Qt::white));
        board.stroke(dash);
        QCOMPARE(TemporaryHome::content(target) == picture, !isFollowed);
        QCOMPARE(board.window->isUnsaved(), !isFollowed);
        QCOMPARE(board.notice().contains(u"Not saved: it is a link of another user"_s), !isFollowed);
        QCOMPARE(WhiteboardFile(board.home.privateFolder()).erase(board.path).isEmpty(), isFollowed);
        QCOMPARE(QFile::exists(target), !isFollowed);
        board.window->discard();
    }

    void textsAreTakenOutOfAPng_data()
    {
        const Table<QByteArray, QByteArray> row;
        const QByteArray picture = chunk("IHDR", "size") + chunk("IDAT", "pixels") + chunk("IEND", "");
        const QByteArray text = chunk("tEXt", "a") + chunk("zTXt", "bb") + chunk("iTXt", "");
        const QByteArray endless = bigEndian(0xffffffff);
        row("no text", signature + picture, signature + picture);
        row("texts before and behind", signature + text + picture + text, signature + picture);
        row("other chunks stay", signature + chunk("tIME", "t") + chunk("text", "t"),
            signature + chunk("tIME", "t") + chunk("text", "t"));
        row("a text that is cut off", signature + picture + chunk("zTXt", "abcdef").chopped(3),
            signature + picture);
        row("a text of 4 GiB, it says", signature + endless + "zTXt" + picture, signature);
        row("a chunk of 4 GiB, it says", signature + endless + "IDAT" + text,
            signature + endless + "IDAT" + text);
        row("a rest that is no chunk", signature + picture + "zTXt", signature + picture + "zTXt");
        row("less than a signature", "\x89PN", "\x89PN");
        row("nothing", "", "");
    }
    void textsAreTakenOutOfAPng()
    {
        const auto [png, expected] = Table<QByteArray, QByteArray>::cells();
        QCOMPARE(withoutPngText(png), expected);
    }

    void aTextInAPictureIsNotExpanded()
    {
        const Board board(pngWithText(1 << 20));
        QVERIFY(!board.saved().text(u"Comment"_s).isEmpty()); // a plain reader expands it
        const QImage picture =
            WhiteboardFile(board.home.privateFolder()).read(board.path, board.size).picture;
        QCOMPARE(picture.pixelColor(1, 1), QColor(Qt::green));
        QCOMPARE(picture.textKeys(), QStringList());
    }

    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved_data()
    {
        const Table<QByteArray, QByteArray> row; // before, by another program
        row("the first save", "", "");
        row("over an earlier picture", pngOf({720, 480}, Qt::green), "");
        row("over another program's", pngOf({720, 480}, Qt::green), pngOf({720, 480}, Qt::red));
    }
    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved()
    {
        const auto [before, other] = Table<QByteArray, QByteArray>::cells();
        const QColor ground = before.isEmpty() ? Qt::white : Qt::green;
        for (const int fault : {EIO, ENOSPC, FaultyFileCalls::half}) {
            bool hasStruck = true;
            for (int call = 1; hasStruck; ++call) {
                FaultyFileCalls calls;
                const Board board(before, calls);
                if (!other.isEmpty())
                    TemporaryHome::write(board.path, other);
                calls.arm(call, fault);
                board.stroke(corner); // it is saved, and read back
                hasStruck = calls.hasStruck();
                calls.arm(0, 0);
                const QString at = u"call %1, fault %2"_s.arg(call).arg(fault);
                const Colors drawn = {Qt::black, ground};
                QVERIFY2(board.window->isUnsaved() || board.at({{100, 200}, {50, 50}}) == drawn,
                         qPrintable(at));
                QCOMPARE(board.shown().pixelColor(board.shown().width() / 720 * 100, 200), QColor(Qt::black));

                QCOMPARE(board.window->saveNow(), QString());
                QVERIFY2(!board.window->isUnsaved() && !board.notice().startsWith(u"Not"_s), qPrintable(at));
                board.stroke(dash);
                QCOMPARE(board.at({{100, 200}, {50, 50}, {450, 100}}),
                         (Colors{Qt::black, ground, Qt::black}));
                QVERIFY2(other.isEmpty() || board.home.kept().contains(other), qPrintable(at));
            }
        }
    }
};

OBLINO_TEST(tst_whiteboardsaving, QApplication)

#include "tst_whiteboardsaving.moc"
