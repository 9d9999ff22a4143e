#include <support/scriptedalert.h>
#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/traces.h>

#include <platform/sharingpicker.h>
#include <platform/widgets/sharingmenu.h>
#include <tools/windows/viewcontrollerwhiteboard.h>
#include <ui/colorbutton.h>
#include <ui/uiutil.h>

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Global = ViewControllerWhiteboard::GlobalVariable;

namespace {

class RecordingPicker : public SharingPicker
{
public:
    void show(const QList<SharingItem> &items, QObject *) override { shared = items; }
    QList<SharingItem> shared;
};

QByteArray pngOf(const QSize &size, const QColor &color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

// A working folder of a test's own with a board in it, drawn on with real mouse events.
struct Board
{
    Board()
    {
        Global::colorWell = {0, 0, 0, 1};
        Global::lineWidth = 5;
        Global::lineDraw = false;
        QDir().mkpath(home.documents());
        QDir::setCurrent(home.documents());
    }
    ~Board() { QDir::setCurrent(QDir::rootPath()); }

    void open()
    {
        window = std::make_unique<ViewControllerWhiteboard>(utilities, picker, home.privateFolder());
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }
    void reopen()
    {
        window->close();
        open();
    }

    [[nodiscard]] QWidget *area() const { return window->findChild<QWidget *>(u"line"_s); }
    void stroke(const QList<QPoint> &points) const
    {
        QTest::mousePress(area(), Qt::LeftButton, {}, points.first());
        for (const QPoint &point : points.sliced(1))
            QTest::mouseMove(area(), point);
        QTest::mouseRelease(area(), Qt::LeftButton, {}, points.last());
    }
    void click(const QString &button) const
    {
        QTest::mouseClick(window->findChild<QPushButton *>(button), Qt::LeftButton);
    }
    void pick(const Color &color) const
    {
        auto *well = window->findChild<ColorButton *>();
        well->setColor(color);
        Q_EMIT well->picked();
    }

    [[nodiscard]] QImage saved() const { return QImage::fromData(TemporaryHome::content(path), "PNG"); }
    [[nodiscard]] QImage shown() const
    {
        QImage image = window->grab(QRect(QPoint(), size)).toImage();
        image.setDevicePixelRatio(1); // as saved() has it
        return image.convertToFormat(QImage::Format_RGB32);
    }
    [[nodiscard]] qreal scale() const { return window->devicePixelRatioF(); }
    [[nodiscard]] QColor at(QPoint point) const
    {
        const QImage image = saved();
        return image.pixelColor((QPointF(point) * scale()).toPoint());
    }
    // How many pixels of the column are dark, counting parts.
    [[nodiscard]] double darkness(int column) const
    {
        const QImage image = saved();
        double sum = 0;
        for (int row = 0; row < image.height(); ++row)
            sum += 1 - image.pixelColor(qRound(column * scale()), row).lightnessF();
        return sum;
    }
    const QSize size{720, 480};
    TemporaryHome home;
    QString path = home.documents() + u"/ltodolistwhiteboard.png"_s;
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
    RecordingPicker picker;
    std::unique_ptr<ViewControllerWhiteboard> window;
};

const QList<QPoint> corner = {{100, 100}, {100, 300}, {300, 300}};

} // namespace

class tst_whiteboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStrokeGoesIntoTheFileAtTheResolutionOfTheDisplay()
    {
        Board board;
        board.open();
        QVERIFY(!QFile::exists(board.path));
        board.stroke(corner);
        QCOMPARE(board.saved().size(), board.size * board.scale());
        QCOMPARE(board.at({100, 200}), QColor(Qt::black));
        QCOMPARE(board.at({200, 300}), QColor(Qt::black));
        QCOMPARE(board.at({200, 200}), QColor(Qt::white));
        // 5 points wide, from 297.5 to 302.5: only whole points cut the edges into grey.
        QVERIFY(qAbs(board.darkness(200) - 5 * board.scale()) < 0.1);
        const double edge = board.at({200, 297}).lightnessF();
        QCOMPARE(board.scale() > 1, edge == 1.0);
        QCOMPARE(board.shown(), board.saved());
        QVERIFY(board.window->minimumSize() == board.size + QSize(0, 60) &&
                board.window->minimumSize() == board.window->maximumSize());
    }

    void endsAndBendsAreRound()
    {
        Board board;
        board.open();
        Global::lineWidth = 40;
        board.stroke(corner);
        QCOMPARE(board.at({100, 82}), QColor(Qt::black)); // before the start
        QCOMPARE(board.at({84, 84}), QColor(Qt::white));
        QCOMPARE(board.at({88, 312}), QColor(Qt::black)); // outside of the bend
        QCOMPARE(board.at({84, 316}), QColor(Qt::white));
    }

    void aStraightLineGoesFromPressToRelease()
    {
        Board board;
        board.open();
        board.click(u"lineButton"_s);
        auto *button = board.window->findChild<QPushButton *>(u"lineButton"_s);
        QCOMPARE(button->toolTip(), u"STRAIGHT LINE"_s);
        QCOMPARE(button->icon().name(), u"AppLineIcon"_s);
        QCOMPARE(board.area()->cursor().shape(), Qt::CrossCursor);
        const QByteArray traces = tracesOf([&] { board.stroke(corner); });
        QVERIFY2(traces.contains("LineStart: 100 100\n") && traces.contains("LineEnd: 300 300\n"), traces);
        QCOMPARE(board.at({200, 200}), QColor(Qt::black));
        QCOMPARE(board.at({100, 200}), QColor(Qt::white));

        board.reopen(); // the mode lasts
        button = board.window->findChild<QPushButton *>(u"lineButton"_s);
        QCOMPARE(button->toolTip(), u"STRAIGHT LINE"_s);
        board.click(u"lineButton"_s);
        QCOMPARE(button->toolTip(), u"DRAW"_s);
        QCOMPARE(button->icon().name(), u"AppLineCurveIcon"_s);
        QCOMPARE(board.area()->cursor().shape(), Qt::ArrowCursor);
    }

    void theEraserIsWhiteAndWideUntilAColourIsPicked()
    {
        Board board;
        board.open();
        Global::lineWidth = 100;
        board.stroke(corner);
        board.click(u"eraserButton"_s);
        QCOMPARE(board.window->findChild<ColorButton *>()->color(), Color());
        const double before = board.darkness(200);
        board.stroke({{150, 300}, {250, 300}});
        QVERIFY(qAbs(before - board.darkness(200) - 10 * board.scale()) < 0.1);

        board.pick({1, 0, 0, 1});
        board.stroke({{400, 100}, {500, 100}});
        QCOMPARE(board.at({450, 100}), QColor(Qt::red));
        QCOMPARE(Global::lineWidth, 5.0);
    }

    void theSavedPictureStaysWhileNothingIsDrawn()
    {
        Board board;
        board.open();
        board.pick({0, 0, 1, 0.5}); // what lay twice would show
        board.stroke(corner);
        const QImage drawn = board.saved();
        board.pick({1, 0, 0, 1});
        board.reopen();
        QCOMPARE(board.saved(), drawn);
        QCOMPARE(board.shown(), drawn);
        board.stroke({{400, 100}, {500, 100}});
        QCOMPARE(board.at({200, 300}), drawn.pixelColor((QPointF(200, 300) * board.scale()).toPoint()));
        QCOMPARE(board.home.kept(), QByteArrayList());
    }

    void erasesAllOnlyAfterYes()
    {
        Board board;
        board.open();
        board.stroke(corner);
        const QImage drawn = board.saved();
        board.questions.answer = std::nullopt; // closed by Esc
        board.click(u"deleteButton"_s);
        board.questions.answer = 1;
        board.click(u"deleteButton"_s);
        QCOMPARE(board.questions.asked.last().messageText,
                 u"Are you sure you want to erase the Whiteboard ?"_s);
        QCOMPARE(board.shown(), drawn);

        board.questions.answer = 0;
        board.click(u"deleteButton"_s);
        QImage empty = drawn;
        empty.fill(Qt::white);
        QCOMPARE(board.shown(), empty);
        QCOMPARE(board.saved(), drawn);
        board.click(u"revertButton"_s);
        QCOMPARE(board.shown(), drawn);
        board.click(u"deleteButton"_s);
        board.reopen();
        QCOMPARE(board.saved(), empty);
    }

    void aFileThatIsNoBoardIsKeptAside_data()
    {
        const Table<QByteArray, bool> row; // bytes, whether it is shown
        const QByteArray good = pngOf({720, 480}, Qt::green);
        row("cut", good.first(good.size() / 2), false);
        row("not a picture", "Dear diary", false);
        row("a picture of another kind", "P3 1 1 255 0 255 0", false);
        row("huge", pngOf({9000, 6000}, Qt::black, QImage::Format_Mono), false);
        row("a picture of other proportions", pngOf({720, 700}, Qt::green), true);
    }
    void aFileThatIsNoBoardIsKeptAside()
    {
        const auto [bytes, isShown] = Table<QByteArray, bool>::cells();
        Board board;
        TemporaryHome::write(board.path, bytes);
        board.open();
        QCOMPARE(board.shown().pixelColor(board.shown().rect().center()),
                 QColor(isShown ? Qt::green : Qt::white));
        QCOMPARE(TemporaryHome::content(board.path), bytes);
        board.stroke(corner);
        board.stroke(corner);
        QCOMPARE(board.at({100, 200}), QColor(Qt::black));
        QCOMPARE(board.home.kept(), QByteArrayList{bytes});
    }

    void aVersionOfAnotherProgramIsKeptAside()
    {
        Board board;
        board.open();
        board.stroke(corner);
        const QByteArray other = pngOf({720, 480}, Qt::green);
        TemporaryHome::write(board.path, other);
        board.stroke(corner);
        QCOMPARE(board.home.kept(), QByteArrayList{other});
    }

    void aPictureOfAnotherScaleFillsTheBoard()
    {
        Board board;
        TemporaryHome::write(board.path, pngOf({1080, 720}, Qt::green));
        board.open();
        board.reopen();
        QCOMPARE(board.at({0, 0}), QColor(Qt::green));
        QCOMPARE(board.at({719, 479}), QColor(Qt::green));
        QCOMPARE(board.home.kept(), QByteArrayList());
    }

    void aPictureThatCannotBeWrittenStaysOnTheBoard()
    {
        Board board;
        board.open();
        QVERIFY(QDir().mkdir(board.path));
        QByteArray traces = tracesOf([&] { board.stroke(corner); });
        QVERIFY2(traces.contains("\ncaught: "), traces);
        board.stroke({{400, 100}, {500, 100}});
        QPointer<ViewControllerWhiteboard> window = board.window.release();
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(window);
        board.window.reset(window);
        QVERIFY(QDir().rmdir(board.path));
        window->show();
        window->close();
        QCOMPARE(board.at({100, 200}), QColor(Qt::black));
        QCOMPARE(board.at({450, 100}), QColor(Qt::black));
    }

    void sharesTheSavedPictureBetweenTwoTexts()
    {
        Board board;
        board.open();
        board.stroke(corner);
        board.click(u"shareButton"_s);
        QCOMPARE(board.picker.shared.size(), 3);
        QCOMPARE(std::get<QString>(board.picker.shared.at(0)), u"Whiteboard\n"_s);
        QCOMPARE(std::get<QImage>(board.picker.shared.at(1)).convertToFormat(QImage::Format_RGB32),
                 board.saved());
        const QString footer = std::get<QString>(board.picker.shared.at(2));
        QVERIFY(footer.startsWith(u"Sent with Oblino. Download from the App Store for Mac:\n\nhttp"_s) &&
                footer.endsWith(u'\n') && footer.count(u'\n') == 3);
        QVERIFY(!board.window->isVisible());
    }

    void theMenuOutlivesTheWindowAndCopiesPictureAndText()
    {
        QWidget main;
        auto *window = new QDialog(&main);
        window->show();
        QImage picture(2, 2, QImage::Format_RGB32);
        picture.fill(Qt::red);
        SharingMenu sharing(QDBusConnection(u"none"_s));
        sharing.show({u"a"_s, picture, u"b"_s}, window);
        delete window;
        auto *menu = main.findChild<QMenu *>(u"sharingMenu"_s);
        QVERIFY(menu && menu->isVisible());
        menu->actions().at(0)->trigger();
        const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(copied->text(), u"ab"_s);
        QCOMPARE(qvariant_cast<QImage>(copied->imageData()), picture);
    }

    void drawsWithAPen()
    {
        Board board;
        board.open();
        const auto send = [&board](QEvent::Type type, QPointF place, Qt::MouseButton button,
                                   Qt::MouseButtons held) {
            QTabletEvent event(type, QPointingDevice::primaryPointingDevice(), place, place, 0.5, 0, 0, 0, 0,
                               0, {}, button, held);
            QCoreApplication::sendEvent(board.area(), &event);
        };
        send(QEvent::TabletMove, {50, 50}, Qt::NoButton, Qt::NoButton); // above the board
        send(QEvent::TabletPress, {100, 100.5}, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::TabletMove, {200, 100.5}, Qt::NoButton, Qt::LeftButton);
        send(QEvent::TabletRelease, {200, 100.5}, Qt::LeftButton, Qt::NoButton);
        QCOMPARE(board.at({150, 98}), QColor(Qt::black)); // from 98 to 103
        QCOMPARE(board.at({150, 97}), QColor(Qt::white));
        QCOMPARE(board.at({75, 75}), QColor(Qt::white));
    }

    void drawsWithAFinger()
    {
        Board board;
        board.open();
        const std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
        QTest::touchEvent(board.window.get(), finger.get()).press(0, {100, 100});
        QTest::touchEvent(board.window.get(), finger.get()).move(0, {200, 100});
        QTest::touchEvent(board.window.get(), finger.get()).release(0, {200, 100});
        QTRY_COMPARE(board.at({150, 100}), QColor(Qt::black));
    }
};

OBLINO_TEST(tst_whiteboard, QApplication)

#include "tst_whiteboard.moc"
