#include <app/windowmemory.h>

#include <controls/windowplace.h>
#include <files/defaults.h>

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <chrono>

namespace oblino {

using namespace std::chrono_literals;

namespace {

// Window managers tell of the frame some time after they have put it round the window.
constexpr auto framingTime = 200ms;

// One of the program's own classes, and no popup.
bool isRemembered(const QWidget &window)
{
    const Qt::WindowType type = window.windowType();
    return window.isWindow() && (type == Qt::Window || type == Qt::Dialog) &&
           QByteArrayView(window.metaObject()->className()).startsWith("oblino::");
}

QString keyOf(const QWidget &window)
{
    return QStringLiteral("window.") +
           QString::fromLatin1(window.metaObject()->className()).section(QStringLiteral("::"), -1);
}

// The screen of the window first.
QList<QRect> availableScreens(const QWidget &window)
{
    QList<QRect> screens = {window.screen()->availableGeometry()};
    for (const QScreen *screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    return screens;
}

void fitWithFrame(QWidget &window)
{
    if (!window.isVisible() || window.isMaximized() || window.isFullScreen())
        return;
    const QRect frame = window.frameGeometry();
    const QRect placed = placedOnScreen(frame, availableScreens(window));
    if (placed == frame)
        return;
    const QSize size = window.size() - (frame.size() - placed.size());
    window.setMinimumSize(window.minimumSize().boundedTo(size));
    window.resize(size);
    window.move(placed.topLeft());
}

} // namespace

WindowMemory::WindowMemory(Defaults &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
}

bool WindowMemory::eventFilter(QObject *watched, QEvent *event)
{
    const bool isOfInterest =
        !event->spontaneous() && (event->type() == QEvent::Show || event->type() == QEvent::Hide);
    auto *window = isOfInterest ? qobject_cast<QWidget *>(watched) : nullptr;
    if (window && isRemembered(*window)) {
        if (event->type() == QEvent::Show)
            bringBack(*window);
        else
            remember(*window);
    }
    return QObject::eventFilter(watched, event);
}

void WindowMemory::bringBack(QWidget &window)
{
    const std::optional<WindowPlace> place = placeOfText(m_settings.text(keyOf(window)).value_or(QString()));
    if (place) {
        const QRect placed = placedOnScreen({place->corner, place->size}, availableScreens(window));
        window.resize(placed.size());
        window.move(placed.topLeft());
        if (QWindow *handle = window.windowHandle()) // to which the corner that it has already is no wish
            handle->setFramePosition(placed.topLeft());
        if (place->isMaximized)
            window.setWindowState(window.windowState() | Qt::WindowMaximized);
    }
    QTimer::singleShot(framingTime, &window, [&window] { fitWithFrame(window); });
}

void WindowMemory::remember(const QWidget &window)
{
    const bool isNormal = !window.isMaximized() && !window.isFullScreen();
    const QRect normal = isNormal ? QRect(window.pos(), window.size()) : window.normalGeometry();
    if (normal.isValid())
        m_settings.setText(keyOf(window), placeText({normal.topLeft(), normal.size(), window.isMaximized()}));
}

void WindowMemory::rememberAll()
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && isRemembered(*window))
            remember(*window);
    }
}

} // namespace oblino
