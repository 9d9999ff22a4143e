#pragma once

#include <support/scriptedalert.h>
#include <support/temporaryhome.h>
#include <support/widgets.h>

#include <base/sharingpicker.h>
#include <controls/colorbutton.h>
#include <controls/noticelabel.h>
#include <tools/windows/viewcontrollerwhiteboard.h>
#include <ui/uiutil.h>

#include <QBuffer>
#include <QPointer>

namespace oblino {

using Global = ViewControllerWhiteboard::GlobalVariable;
using Colors = QList<QColor>;

inline const QList<QPoint> corner = {{100, 100}, {100, 300}, {300, 300}};
inline const QList<QPoint> dash = {{400, 100}, {500, 100}};

class RecordingPicker : public SharingPicker
{
public:
    void show(const QVariantList &items, QObject *, Edge edge) override
    {
        shared = items;
        isAbove = edge == Edge::Top;
    }
    bool isAbove = false;
    QVariantList shared;
};

inline QByteArray pngOf(const QSize &size, const QColor &color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

// A working folder of a test's own, with a picture or none, and a board in it, drawn on with real mouse
// events.
struct Board
{
    explicit Board(const QByteArray &picture = {}, FileCalls &fileCalls = FileCalls::posix())
        : calls(fileCalls)
    {
        Global::colorWell = {0, 0, 0, 1};
        Global::lineWidth = 5;
        Global::lineDraw = false;
        QDir::setCurrent(home.documents());
        if (!picture.isEmpty())
            TemporaryHome::write(path, picture);
        reopen();
    }
    ~Board()
    {
        delete window;
        QDir::setCurrent(QDir::rootPath());
    }

    void reopen()
    {
        if (window)
            window->close();
        delete window;
        window = new ViewControllerWhiteboard(utilities, picker, home.privateFolder(), home.documents(),
                                              nullptr, calls);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }

    [[nodiscard]] QWidget &area() const { return find<QWidget>(*window, "line"); }
    void stroke(const QList<QPoint> &points) const
    {
        begin(points);
        QTest::mouseRelease(&area(), Qt::LeftButton, {}, points.last());
    }
    // A stroke that is not ended.
    void begin(const QList<QPoint> &points) const
    {
        QTest::mousePress(&area(), Qt::LeftButton, {}, points.first());
        for (const QPoint &point : points.sliced(1))
            QTest::mouseMove(&area(), point);
    }
    void click(const char *button) const { oblino::click(*window, button); }
    void pick(const Color &color) const
    {
        auto *well = window->findChild<ColorButton *>();
        well->setColor(color);
        Q_EMIT well->picked();
    }
    // What the button for straight lines and the cursor show.
    [[nodiscard]] QString mode() const
    {
        const auto &button = find<QPushButton>(*window, "lineButton");
        return QStringLiteral("%1, %2, %3")
            .arg(button.toolTip(), button.icon().name())
            .arg(area().cursor().shape());
    }

    [[nodiscard]] QString notice() const { return find<NoticeLabel>(*window, "notice").notice(); }
    [[nodiscard]] QImage saved() const { return QImage::fromData(TemporaryHome::content(path), "PNG"); }
    [[nodiscard]] QImage shown() const
    {
        QImage image = window->grab(QRect(QPoint(), size)).toImage();
        image.setDevicePixelRatio(1); // as saved() has it
        return image.convertToFormat(QImage::Format_RGB32);
    }
    [[nodiscard]] qreal scale() const { return window->devicePixelRatioF(); }
    // The colours of points in the file.
    [[nodiscard]] Colors at(const QList<QPointF> &points) const
    {
        const QImage image = saved();
        Colors colors;
        for (const QPointF &point : points)
            colors += image.pixelColor((point * scale()).toPoint());
        return colors;
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

    FileCalls &calls;
    const QSize size{720, 480};
    TemporaryHome home;
    QString path = home.documents() + QStringLiteral("/ltodolistwhiteboard.png");
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
    RecordingPicker picker;
    QPointer<ViewControllerWhiteboard> window;
};

} // namespace oblino
