#include <app/application.h>

#include <contacts/contactmodel.h>
#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
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

    tskMgr().setSharingPicker(&m_sharingMenu);
    m_mainWindow = std::make_unique<ViewController>(tskMgr(), Documents::standard(), uiUtil(),
                                                    NotificationCenter::standard(), contactsFolder());
    connect(m_mainWindow.get(), &ViewController::terminationRequested, this, &Application::terminate);
    connect(m_mainWindow.get(), &ViewController::clientsRequested, this,
            [this] { openContacts<ViewControllerClientMgmt>(); });
    connect(m_mainWindow.get(), &ViewController::teamMembersRequested, this,
            [this] { openContacts<ViewControllerTeamMgmt>(); });
    connect(&m_instance, &SingleInstance::raiseRequested, m_mainWindow.get(), &ViewController::comeToFront);
    connect(&m_signals, &UnixSignals::endRequested, this, &Application::terminate);
    m_signals.listen();
    Trace::flushWhenIdle();
    m_mainWindow->show();
}

template<typename Window>
void Application::openContacts()
{
    auto *window = m_mainWindow->findChild<Window *>();
    if (!window) {
        window = new Window(contactsFolder(), m_mainWindow.get());
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->raise();
    window->activateWindow();
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
