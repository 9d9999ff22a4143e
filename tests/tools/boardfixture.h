#pragma once

#include "toolhome.h"
#include <support/test.h>

#include <base/datakind.h>
#include <base/sharingpicker.h>
#include <controls/colorbutton.h>
#include <controls/noticelabel.h>
#include <tools/windows/viewcontrollerwhiteboard.h>

namespace oblino {

using Global = ViewControllerWhiteboard::GlobalVariable;
using Colors = QList<QColor>;

inline const QList<QPoint> corner = {{100, 100}, {100, 300}, {300, 300}};
inline const QList<QPoint> dash = {{400, 100}, {500, 100}};

// A board on a picture or on none, drawn on with real mouse events. It keeps what is shared.
struct Board : ToolHome, SharingPicker
{
    explicit Board(const std::optional<QByteArray> &picture = {}, FileCalls &calls = FileCalls::posix())
        : ToolHome(calls)
        , m_calls(calls)
    {
        Global::colorWell = {0, 0, 0, 1};
        Global::lineWidth = 5;
        Global::lineDraw = false;
        if (picture)
            TemporaryHome::write(board, *picture);
        reopen();
    }
    ~Board() override { delete window; }

    void reopen()
    {
        delete window;
        window = new ViewControllerWhiteboard(utilities, *this, home.privateFolder(), home.documents(),
                                              nullptr, m_calls);
        window->show();
    }
    void show(const QVariantList &items, QObject *, Edge edge) override
    {
        shared = items;
        sharedAt = edge;
    }

    [[nodiscard]] QWidget &area() const { return find<QWidget>(*window, "line"); }
    void begin(const QList<QPoint> &points) const
    {
        QTest::mousePress(&area(), Qt::LeftButton, {}, points.first());
        for (const QPoint &point : points.sliced(1))
            QTest::mouseMove(&area(), point);
    }
    void end(QPoint point) const { QTest::mouseRelease(&area(), Qt::LeftButton, {}, point); }
    void stroke(const QList<QPoint> &points) const
    {
        begin(points);
        end(points.last());
    }
    void click(const char *button) const { oblino::click(*window, button); }
    void pick(const Color &color) const
    {
        auto &well = find<ColorButton>(*window, "color");
        well.setColor(color);
        Q_EMIT well.picked();
    }

    [[nodiscard]] QString notice() const { return find<NoticeLabel>(*window, "notice").notice(); }
    [[nodiscard]] QImage saved() const { return QImage::fromData(TemporaryHome::content(board), "PNG"); }
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

    const QSize size{720, 480};
    QVariantList shared;
    Edge sharedAt = Edge::Left;
    QPointer<ViewControllerWhiteboard> window;

private:
    FileCalls &m_calls;
};

} // namespace oblino
