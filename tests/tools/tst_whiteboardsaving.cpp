#include "boardfixture.h"

#include <support/faultyfilecalls.h>
#include <support/unprivileged.h>

#include <tools/pngtext.h>

#include <sys/stat.h>

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
        const Table<Bytes, QString, QString> row; // the file, why it is not shown, what becomes of it then
        const QByteArray good = pngOf(size, Qt::green);
        const QString unread = u"was not read: it holds no picture"_s;
        const QString copied = u"It was copied to "_s;
        row("no file", {}, {}, {});
        row("an empty one", "", {}, {});
        row("a picture of another scale", pngOf({1080, 720}, Qt::green), {}, {});
        row("of nearly the board's size", pngOf({720, 481}, Qt::green), {}, {});
        row("of other proportions", pngOf({720, 700}, Qt::green), {}, copied);
        row("cut", good.first(good.size() / 2), unread, copied);
        row("a picture of another kind", "P3 1 1 255 0 255 0", unread, copied);
        row("huge", pngOf({9000, 6000}, Qt::black, QImage::Format_Mono), unread, copied);
        row("too large to read", QByteArray((64 << 20) + 1, 'x'), u"it has more than 64 MiB"_s,
            u"It was moved to "_s);
    }
    void whatIsThereStaysUntilSomethingIsDrawn()
    {
        const auto [bytes, why, moved] = Table<Bytes, QString, QString>::cells();
        const bool isShown = !bytes.value_or("").isEmpty() && why.isEmpty();
        Board board(bytes);
        const QDateTime before = QFileInfo(board.board).lastModified();
        QCOMPARE(board.shown().pixelColor(360, 240), QColor(isShown ? Qt::green : Qt::white));
        QVERIFY2(board.notice().isEmpty() == why.isEmpty() && board.notice().contains(why),
                 qPrintable(board.notice()));
        board.reopen();
        QCOMPARE(QFile::exists(board.board), bytes.has_value());
        QVERIFY(TemporaryHome::content(board.board) == bytes.value_or(""));
        QCOMPARE(QFileInfo(board.board).lastModified(), before);

        board.stroke(dash);
        QVERIFY2(board.notice().isEmpty() == moved.isEmpty() && board.notice().contains(moved),
                 qPrintable(board.notice()));
        board.stroke(corner);
        QCOMPARE(board.at({{450, 100}, {100, 200}}), (Colors{Qt::black, Qt::black}));
        QVERIFY(board.home.kept() == (moved.isEmpty() ? QByteArrayList() : QByteArrayList{*bytes}));
    }

    void aClosedBoardWhosePictureIsInNoFileStillSavesOrRescuesIt()
    {
        const Board board;
        board.window->setAttribute(Qt::WA_DeleteOnClose);
        QVERIFY(QDir().mkdir(board.board)); // no file can be put there
        const QByteArray traces = tracesOf([&] { board.stroke(dash); });
        QVERIFY2(traces.contains("\ncaught: "), traces);
        const auto &label = find<NoticeLabel>(*board.window, "notice");
        QVERIFY2(label.notice().startsWith(u"Not saved: "_s), qPrintable(label.notice()));
        QVERIFY(label.geometry().top() >= 540 && board.window->rect().contains(label.geometry()));
        QCOMPARE(board.area().geometry(), QRect({}, size));

        board.begin(corner);
        board.window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(board.window && board.window->saveNow().contains(u"could not be saved"_s));
        const QByteArray rescued = TemporaryHome::content(board.window->rescue());
        QVERIFY(QDir().rmdir(board.board));
        QVERIFY(board.window->saveNow().isEmpty() && !board.window->isUnsaved());
        QVERIFY(board.notice().isEmpty() && board.window->height() == 540);
        QCOMPARE(board.at({{450, 100}, {100, 200}}), (Colors{Qt::black, Qt::black}));
        QCOMPARE(TemporaryHome::content(board.board), rescued);

        board.begin(dash);
        board.window->discard();
        delete board.window;
        QCOMPARE(TemporaryHome::content(board.board), rescued);
    }

    void textsAreTakenOutOfAPng()
    {
        const QByteArray picture = "\x89PNG\r\n\x1a\n" + chunk("IHDR", "size") + chunk("IDAT", "pixels");
        const QByteArray text = chunk("tEXt", "a") + chunk("zTXt", "bb") + chunk("iTXt", "");
        const QByteArray endless = "\xff\xff\xff\xff"; // 4 GiB, it says
        QCOMPARE(withoutPngText(picture + text + chunk("tIME", "t") + text), picture + chunk("tIME", "t"));
        QCOMPARE(withoutPngText(picture + endless + "zTXt" + picture), picture);
        for (const QByteArray &strange : {picture + endless + "IDAT" + text, picture + "zTXt", "\x89PN"_ba})
            QCOMPARE(withoutPngText(strange), strange);

        const Board board(pngOf(size, Qt::green, QImage::Format_RGB32, QString(1 << 20, u'a')));
        const QImage read = WhiteboardFile(board.home.privateFolder()).read(board.board, size).picture;
        QCOMPARE(read.textKeys(), QStringList()); // a plain reader expands it
    }

    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved_data()
    {
        const Table<Bytes, int> row; // what another program has written, what goes wrong
        row("half written", {}, FaultyFileCalls::half);
        row("disk full", pngOf(size, Qt::red), ENOSPC);
    }
    void whateverCallFailsThePictureIsInTheFileOrStillUnsaved()
    {
        const auto [other, fault] = Table<Bytes, int>::cells();
        const Colors drawn = {Qt::black, Qt::green};
        bool hasStruck = true;
        for (int call = 1; hasStruck; ++call) {
            FaultyFileCalls calls;
            const Board board(pngOf(size, Qt::green), calls);
            if (other)
                TemporaryHome::write(board.board, *other);
            calls.arm(call, fault);
            board.stroke(corner); // it is saved, and read back
            hasStruck = calls.hasStruck();
            calls.arm(0, 0);
            const QString at = u"call %1: %2"_s.arg(call).arg(board.notice());
            QVERIFY2(board.window->isUnsaved() || board.at({{100, 200}, {50, 50}}) == drawn, qPrintable(at));
            QCOMPARE(board.shown().pixelColor(100, 200), QColor(Qt::black));
            QVERIFY2(board.window->saveNow().isEmpty() && !board.window->isUnsaved(), qPrintable(at));
            QCOMPARE(board.at({{100, 200}, {50, 50}}), drawn);
            QVERIFY2(!other || board.home.kept().contains(*other), qPrintable(at));
        }
    }
};

OBLINO_TEST(tst_whiteboardsaving, QApplication)

#include "tst_whiteboardsaving.moc"
