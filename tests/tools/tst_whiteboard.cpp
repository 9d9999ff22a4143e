#include "boardfixture.h"

#include <support/testmain.h>
#include <support/traces.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_whiteboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStrokeGoesIntoTheFileAtTheResolutionOfTheDisplay()
    {
        const Board board;
        board.stroke(corner);
        QCOMPARE(board.saved().size(), board.size * board.scale());
        QCOMPARE(board.at({{100, 200}, {200, 300}, {200, 200}}), (Colors{Qt::black, Qt::black, Qt::white}));
        // 5 points wide, from 297.5 to 302.5: only whole points cut the edges into grey.
        QVERIFY(qAbs(board.darkness(200) - 5 * board.scale()) < 0.1);
        QCOMPARE(board.at({{200, 297}}) == Colors{Qt::white}, board.scale() > 1);
        QCOMPARE(board.shown(), board.saved());
        QCOMPARE(board.window->minimumSize(), board.size + QSize(0, 60));
        QCOMPARE(board.window->maximumSize(), board.size + QSize(0, 60));

        Global::lineWidth = 40; // its ends and bends are round
        board.stroke(corner);
        QCOMPARE(board.at({{100, 82}, {84, 84}, {88, 312}, {84, 316}}),
                 (Colors{Qt::black, Qt::white, Qt::black, Qt::white}));
    }

    void aStraightLineGoesFromPressToRelease()
    {
        Board board;
        const auto mode = [&board] {
            const auto &button = find<QPushButton>(*board.window, "lineButton");
            return button.toolTip() + u' ' + button.icon().name() + u' ' +
                   QString::number(board.area().cursor().shape());
        };
        const QString straight = u"STRAIGHT LINE AppLineIcon %1"_s.arg(Qt::CrossCursor);
        board.click("lineButton");
        QCOMPARE(mode(), straight);
        const QByteArray traces = tracesOf([&] { board.stroke(corner); });
        QVERIFY2(traces.contains("LineStart: 100 100\n") && traces.contains("LineEnd: 300 300\n"), traces);
        QCOMPARE(board.at({{200, 200}, {100, 200}}), (Colors{Qt::black, Qt::white}));
        board.reopen(); // the mode lasts
        QCOMPARE(mode(), straight);
        board.click("lineButton");
        QCOMPARE(mode(), u"DRAW AppLineCurveIcon %1"_s.arg(Qt::ArrowCursor));
    }

    void theEraserIsWhiteAndWideUntilAColourIsPicked()
    {
        const Board board;
        Global::lineWidth = 100;
        board.stroke(corner);
        board.click("eraserButton");
        QCOMPARE(find<ColorButton>(*board.window, "color").color(), Color());
        const double before = board.darkness(200);
        board.stroke({{150, 300}, {250, 300}});
        QVERIFY(qAbs(before - board.darkness(200) - 10 * board.scale()) < 0.1);

        board.pick({1, 0, 0, 1});
        board.stroke(dash);
        QCOMPARE(board.at({{450, 100}}), Colors{Qt::red});
        QCOMPARE(Global::lineWidth, 5.0);
    }

    void theSavedPictureStaysWhileNothingIsDrawn()
    {
        Board board;
        board.pick({0, 0, 1, 0.5}); // what lay twice would show
        board.stroke(corner);
        const QImage drawn = board.saved();
        const Colors bend = board.at({{100, 300}, {200, 300}});
        board.pick({1, 0, 0, 1});
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
        for (const std::optional<int> no : {std::optional<int>(), std::optional(1)}) { // closed by Esc
            board.questions.answer = no;
            board.click("deleteButton");
            QCOMPARE(board.shown(), drawn);
        }
        QCOMPARE(board.questions.asked.last().messageText,
                 u"Are you sure you want to erase the Whiteboard ?"_s);

        board.questions.answer = 0;
        board.click("deleteButton");
        QImage empty = drawn;
        empty.fill(Qt::white);
        QCOMPARE(board.shown(), empty);
        QCOMPARE(board.saved(), drawn);
        board.click("revertButton");
        QCOMPARE(board.shown(), drawn);
        board.click("deleteButton");
        QVERIFY(board.window->isUnsaved());
        delete board.window; // without being hidden first
        QCOMPARE(board.saved(), empty);
    }

    void sharesTheSavedPictureBetweenTwoTexts()
    {
        const Board board;
        board.stroke(corner);
        board.click("shareButton");
        QCOMPARE(board.picker.shared.size(), 3);
        QCOMPARE(board.picker.shared.at(0).toString(), u"Whiteboard\n"_s);
        QCOMPARE(board.picker.shared.at(1).value<QImage>().convertToFormat(QImage::Format_RGB32),
                 board.saved());
        const QString footer = board.picker.shared.at(2).toString();
        QVERIFY(footer.startsWith(u"Sent with Oblino. Download from the App Store for Mac:\n\nhttp"_s) &&
                footer.endsWith(u'\n') && footer.count(u'\n') == 3);
        QVERIFY(!board.window->isVisible());
        QVERIFY(board.picker.isAbove);
    }

    void drawsWithPenAndFinger()
    {
        const Board board;
        const auto send = [&board](QEvent::Type type, QPointF place, Qt::MouseButton button,
                                   Qt::MouseButtons held) {
            QTabletEvent event(type, QPointingDevice::primaryPointingDevice(), place, place, 0.5, 0, 0, 0, 0,
                               0, {}, button, held);
            QCoreApplication::sendEvent(&board.area(), &event);
        };
        send(QEvent::TabletMove, {50, 50}, Qt::NoButton, Qt::NoButton); // above the board
        send(QEvent::TabletPress, {100, 100.5}, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::TabletMove, {200, 100.5}, Qt::NoButton, Qt::LeftButton);
        send(QEvent::TabletRelease, {200, 100.5}, Qt::LeftButton, Qt::NoButton);
        // It is black from 98 to 103.
        QCOMPARE(board.at({{150, 98}, {150, 97}, {75, 75}}), (Colors{Qt::black, Qt::white, Qt::white}));

        const std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
        QTest::touchEvent(board.window, finger.get()).press(0, {100, 200});
        QTest::touchEvent(board.window, finger.get()).move(0, {200, 200});
        QTest::touchEvent(board.window, finger.get()).release(0, {200, 200});
        QTRY_COMPARE(board.at({{150, 200}}), Colors{Qt::black});
    }
};

OBLINO_TEST(tst_whiteboard, QApplication)

#include "tst_whiteboard.moc"
