#include <app/application.h>

#include <core/taskmanager.h>
#include <platform/appearance.h>
#include <platform/documents.h>
#include <platform/notificationcenter.h>
#include <platform/singleinstance.h>
#include <platform/trace.h>
#include <ui/theme.h>
#include <ui/uiutil.h>
#include <ui/viewcontroller.h>

#include <QApplication>
#include <QDBusConnection>
#include <QMessageBox>

namespace oblino {

using namespace std::chrono_literals;

namespace {

// A portal that is slower than this colours the window late rather than holding the start up.
constexpr auto portalTime = 250ms;

} // namespace

Application::Application(SingleInstance &instance)
    : m_portal(Appearance::standard(), QDBusConnection::sessionBus())
    , m_instance(instance)
{
}

Application::~Application() = default;

void Application::start()
{
    m_portal.settle(portalTime);
    followAppearance();
    connect(&Appearance::standard(), &Appearance::changed, this, [this] {
        followAppearance();
        NotificationCenter::standard().post(QStringLiteral("AppleInterfaceThemeChangedNotification"));
    });

    m_mainWindow = std::make_unique<ViewController>(tskMgr(), Documents::standard(), uiUtil(),
                                                    NotificationCenter::standard());
    connect(m_mainWindow.get(), &ViewController::terminationRequested, this, &Application::terminate);
    connect(&m_instance, &SingleInstance::raiseRequested, m_mainWindow.get(), &ViewController::comeToFront);
    connect(&m_signals, &UnixSignals::endRequested, this, &Application::terminate);
    m_signals.listen();
    Trace::flushWhenIdle();
    m_mainWindow->show();
}

void Application::followAppearance()
{
    applyAppearance(tskMgr().inDarkMode());
}

// Windows save what they save on closing. An open question is not closed, which would answer it: it ends
// without an answer when the event loops end.
void Application::terminate()
{
    disconnect(m_mainWindow.get(), &ViewController::terminationRequested, this, nullptr);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && !qobject_cast<QMessageBox *>(window))
            window->close();
    }
    QCoreApplication::exit(0);
}

} // namespace oblino
