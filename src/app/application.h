#pragma once

#include <app/lastsave.h>
#include <app/windowmemory.h>
#include <base/daywatch.h>
#include <base/noticelog.h>
#include <controls/sharingmenu.h>
#include <controls/wheelguard.h>
#include <core/namedfilters.h>
#include <desktop/keyring.h>
#include <desktop/portalappearance.h>
#include <desktop/unixsignals.h>
#include <messaging/sendingrun.h>
#include <records/cloudsession.h>

#include <QObject>

#include <memory>

namespace oblino {

class SingleInstance;
class TaskCloud;
enum class DataKind;
class ViewController;

/// Puts the program together and sees to its end.
class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(SingleInstance &instance);
    ~Application() override;

    void start();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectWindows();
    template<typename Window, typename... Arguments>
    void open(Arguments &&...arguments);
    template<typename Window, typename... Arguments>
    void openFrom(QWidget *parent, Arguments &&...arguments);
    template<typename Window>
    void openContacts();
    void openGuide();
    void openEraser();
    void openEarlierVersions();
    [[nodiscard]] QString saveOpen(DataKind kind);
    void announceErasure(DataKind kind);
    void announceRestoring(DataKind kind);
    void tellNotRemembered();
    void bringBackTable();
    void rememberTable();
    void followAppearance();
    void followDay();
    /// Asks where something would be broken off.
    [[nodiscard]] bool confirmQuit();
    void terminate();
    /// Saves what can be saved when the windowing system has gone, which ends the process at once.
    static void saveAtExit();
    void offerRescued();
    void askAboutRescued();

    static inline Application *s_running = nullptr;

    WheelGuard m_wheelGuard;
    WindowMemory m_windowMemory;
    UnixSignals m_signals;
    PortalAppearance m_portal;
    SharingMenu m_sharingMenu;
    Keyring m_keyring;
    std::unique_ptr<TaskCloud> m_taskCloud; // goes after the session, whose answers it takes
    CloudSession m_cloud;
    NoticeLog m_notices;
    NamedFilters m_filters;
    SendingRun m_sendingRun;
    DayWatch m_dayWatch;
    std::unique_ptr<ViewController> m_mainWindow;
    std::unique_ptr<LastSave> m_lastSave;
    SingleInstance &m_instance;
};

} // namespace oblino
