#include "boardfixture.h"

#include <tools/boardhistory.h>

class tst_whiteboard : public QObject
{
    Q_OBJECT

    const QColor black = Qt::black;
    const QColor white = Qt::white;

private Q_SLOTS:
    void strokesGoIntoTheFileAtTheResolutionOfTheDisplay()
    {
        const Board board;
        board.stroke(corner);
        QCOMPARE(board.saved().size(), board.size * board.scale());
        // 5 points wide, from 297.5 to 302.5: only whole points cut the edges into grey.
        QCOMPARE(board.at({{100, 200}, {200, 296}, {200, 297.5}, {200, 301}, {200, 303}}),
                 (Colors{black, white, black, black, white}));
        QCOMPARE(board.at({{200, 297}}) == Colors{white}, board.scale() > 1);
        QCOMPARE(board.shown(), board.saved());
        QCOMPARE(board.window->minimumSize(), board.size + QSize(0, 60));
        QCOMPARE(board.window->maximumSize(), board.size + QSize(0, 60));

        Global::lineWidth = 40; // its ends and bends are round
        board.stroke(corner);
        QCOMPARE(board.at({{100, 82}, {84, 84}, {88, 312}, {84, 316}}), (Colors{black, white, black, white}));
        board.click("eraserButton"); // white, from 295 to 305
        QCOMPARE(find<ColorButton>(*board.window, "color").color(), Color());
        board.stroke({{150, 300}, {250, 300}});
        QCOMPARE(board.at({{200, 294}, {200, 295}, {200, 304}, {200, 305}}),
                 (Colors{black, white, white, black}));
        board.pick({1, 0, 0, 1});
        board.stroke(dash);
        QCOMPARE(board.at({{450, 100}, {450, 104}}), (Colors{Qt::red, white}));
    }

    void theSavedPictureStaysWhileNothingIsDrawn()
    {
        Board board;
        board.pick({0, 0, 1, 0.5}); // what lay twice would show
        board.stroke(corner);
        const QImage drawn = board.saved();
        const Colors bend = board.at({{100, 300}, {200, 300}});
        board.reopen();
        QCOMPARE(board.saved(), drawn);
        QCOMPARE(board.shown(), drawn);
        board.stroke(dash);
        QCOMPARE(board.at({{100, 300}, {200, 300}}), bend);
        QCOMPARE(board.home.kept(), QByteArrayList());
    }

    void erasesAllOnlyAfterYes()
    {
        Board board;
        board.stroke(corner);
        const QImage drawn = board.saved();
        for (const std::optional<int> answer : {std::optional(1), {}, {0}}) { // no, Esc, yes
            QCOMPARE(board.shown(), drawn);
            board.questions.answer = answer;
            board.click("deleteButton");
        }
        QCOMPARE(board.questions.asked.last().messageText,
                 u"Are you sure you want to erase the Whiteboard ?"_s);
        QImage empty = drawn;
        empty.fill(Qt::white);
        QCOMPARE(board.shown(), empty);
        board.click("revertButton");
        QCOMPARE(board.shown(), drawn);
        board.click("deleteButton");
        delete board.window; // without being hidden first
        QCOMPARE(board.saved(), empty);
    }

    void stepsAreUndoneAndRedoneInTheFile()
    {
        Board board(pngOf({1080, 720}, Qt::green)); // at a scale that is none of the board's
        QList<QImage> pictures = {board.shown()};
        showActive(*board.window);
        const auto &undo = find<QToolButton>(*board.window, "undoButton");
        board.stroke(corner);
        pictures += board.shown();
        Global::lineDraw = true;
        board.stroke(dash);
        pictures += board.shown();
        QCOMPARE(undo.toolTip(), u"Undo Straight Line"_s);
        board.questions.answer = 0;
        board.click("deleteButton");
        pictures += board.shown();
        for (int round = 1; round <= 2; ++round) {
            for (int at = 2; at >= 0; --at) {
                QTest::keySequence(board.window, QKeySequence(u"Ctrl+Z"_s));
                QCOMPARE(board.shown(), pictures.at(at));
            }
            QVERIFY(!undo.isEnabled() && !board.window->isUnsaved());
            QCOMPARE(board.saved(), QImage::fromData(pngOf({1080, 720}, Qt::green)));
            for (int at = 1; at <= 3; ++at) {
                QTest::keySequence(board.window, QKeySequence(u"Ctrl+Shift+Z"_s));
                QVERIFY(board.shown() == pictures.at(at) && board.saved() == pictures.at(at));
            }
        }
        board.window->dataErased(DataKind::Whiteboard); // where the window is open, it stays
        QVERIFY(!undo.isEnabled());
        board.stroke(corner);
        board.window->dataRestored(DataKind::Whiteboard);
        QVERIFY(!undo.isEnabled());
    }

    void theRightButtonOpensAMenuAndDrawsNothing()
    {
        const Board board;
        QTest::mouseClick(&board.area(), Qt::RightButton, {}, corner.first());
        QVERIFY(!QFile::exists(board.board));
        const auto ask = [&board](QWidget &widget, QContextMenuEvent::Reason reason) {
            QContextMenuEvent event(reason, {9, 9}, widget.mapToGlobal(QPoint(9, 9)));
            QCoreApplication::sendEvent(&widget, &event);
            return board.window->findChild<QMenu *>();
        };
        QCOMPARE(namelessIn(*board.window), QString());
        board.begin(dash);
        QVERIFY(!ask(board.area(), QContextMenuEvent::Mouse)); // in the midst of a stroke
        board.end(dash.last());
        auto &button = find<QPushButton>(*board.window, "shareButton");
        QMenu *menu = ask(button, QContextMenuEvent::Keyboard);
        QVERIFY(menu && menu->isVisible());
        menu->actions().first()->trigger();
        QCOMPARE(board.at({{450, 100}}), Colors{white});
    }

    void keepsAsManyStepsAsTheLimitAllows()
    {
        BoardHistory history(40); // bytes, of which each step takes the four of one pixel
        QImage picture(7, 5, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QList<QImage> pictures;
        for (int step = 0; step < 30; ++step) {
            pictures += picture;
            picture.setPixel(step % 7, step * 3 % 5, QRgb(step));
            history.record(u"Stroke"_s, pictures.last(), picture);
        }
        for (int step = 29; step >= 20; --step) {
            picture = history.undo(picture);
            QCOMPARE(picture, pictures.at(step));
        }
        QVERIFY(history.undoName().isEmpty());
    }

    void drawsWithAPenWhereItIs()
    {
        const Board board;
        const auto send = [&board](QEvent::Type type, QPointF place, Qt::MouseButtons held) {
            QTabletEvent event(type, QPointingDevice::primaryPointingDevice(), place, place, 0.5, 0, 0, 0, 0,
                               0, {}, type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton, held);
            QCoreApplication::sendEvent(&board.area(), &event);
        };
        send(QEvent::TabletMove, {50, 50}, Qt::NoButton); // above the board
        send(QEvent::TabletPress, {100, 100.5}, Qt::LeftButton);
        send(QEvent::TabletMove, {200, 100.5}, Qt::LeftButton);
        send(QEvent::TabletRelease, {200, 100.5}, Qt::NoButton);
        // It is black from 98 to 103.
        QCOMPARE(board.at({{150, 98}, {150, 97}, {75, 75}}), (Colors{black, white, white}));
    }
};

OBLINO_TEST(tst_whiteboard, QApplication)

#include "tst_whiteboard.moc"
