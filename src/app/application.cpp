#include <app/application.h>

#include <app/viewcontrollerenhancement.h>

#include <base/appearance.h>
#include <base/datakind.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <cloud/taskcloud.h>
#include <cloud/taskrecord.h>
#include <contacts/contactstore.h>
#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
#include <controls/theme.h>
#include <controls/toolwindow.h>
#include <core/taskmanager.h>
#include <desktop/singleinstance.h>
#include <desktop/soundplayer.h>
#include <files/defaults.h>
#include <files/documents.h>
#include <files/earlierversions.h>
#include <files/filecalls.h>
#include <messaging/smsgateway.h>
#include <messaging/windows/viewcontrollersending.h>
#include <messaging/windows/viewcontrollersettings.h>
#include <records/windows/cloudaccountwindow.h>
#include <records/windows/passwordprompt.h>
#include <tools/notesfile.h>
#include <tools/whiteboardfile.h>
#include <tools/windows/earlierversionswindow.h>
#include <tools/windows/viewcontrollerdestroy.h>
#include <tools/windows/viewcontrollernotes.h>
#include <tools/windows/viewcontrollerwhiteboard.h>
#include <ui/uiutil.h>
#include <ui/windows/viewcontroller.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include <cstdlib>
#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {

// A portal that is slower than this colours the window late rather than holding the start up.
constexpr auto portalTime = 250ms;

// Of the settings.
const struct
{
    QString columns = QStringLiteral("table.columns");
    QString view = QStringLiteral("table.view");
    QString order = QStringLiteral("table.order");
    QString isDescending = QStringLiteral("table.descending");
} tableKeys;

// The account belongs to the desktop, so it is not among the program's settings.
CloudAccounts desktopAccounts()
{
    return CloudAccounts(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                         QStringLiteral("/cloud.ini"));
}

} // namespace

Application::Application(SingleInstance &instance)
    : m_windowMemory(Defaults::standard())
    , m_portal(Appearance::standard(), QDBusConnection::sessionBus())
    , m_sharingMenu(contactsFolder() + QStringLiteral("/drafts"))
    , m_keyring(QStringLiteral("oblino"))
    , m_cloud(desktopAccounts(), contactsFolder() + QStringLiteral("/Cloud.sqlite"), m_keyring,
              {&taskRecordType()})
    , m_filters(Defaults::standard())
    , m_sendingRun({.isOn = [] { return tskMgr().getNotification(); }, .send = sendSMS})
    , m_instance(instance)
{
}

Application::~Application()
{
    s_running = nullptr;
    FileCalls::posix().setProgressHandler(nullptr);
    tskMgr().setCloud(nullptr);
    if (m_sendingRun.isRunning()) { // else the gateway would be made only to be stopped
        m_sendingRun.stop();
        smsGateway().stop();
    }
}

void Application::start()
{
    m_portal.waitForAnswer(portalTime);
    followAppearance();
    connect(&Appearance::standard(), &Appearance::changed, this, [this] {
        followAppearance();
        NotificationCenter::standard().post(QStringLiteral("AppleInterfaceThemeChangedNotification"));
    });

    followDay();

    tskMgr().setSharingPicker(&m_sharingMenu);
    uiUtil().setSounds(&SoundPlayer::make);
    m_taskCloud = std::make_unique<TaskCloud>(tskMgr(), m_cloud.container(), NotificationCenter::standard());
    tskMgr().setCloud(m_taskCloud.get());
    m_mainWindow = std::make_unique<ViewController>(tskMgr(), Documents::standard(), uiUtil(),
                                                    NotificationCenter::standard(), contactsFolder());
    m_mainWindow->setNamedFilters(m_filters);
    bringBackTable();
    connect(m_mainWindow.get(), &ViewController::terminationRequested, this, &Application::terminate);
    connectWindows();
    connect(m_mainWindow.get(), &ViewController::told, &m_notices, &NoticeLog::add);
    m_notices.add(m_mainWindow->notice());
    if (const QStringList notices = Defaults::standard().takeNotices(); !notices.isEmpty())
        m_mainWindow->tell(notices);
    m_lastSave = std::make_unique<LastSave>(*m_mainWindow, uiUtil());
    m_mainWindow->setQuitGuard([this] { return confirmQuit(); });
    m_mainWindow->setBeforeCloud([this] { return ensurePassword(m_cloud, m_mainWindow.get()); });
    connect(&tskMgr(), &TaskManager::cloudWaitBegan, &m_cloud, [this] { m_cloud.setInUse(true); });
    connect(&tskMgr(), &TaskManager::cloudWaitEnded, &m_cloud, [this] { m_cloud.setInUse(false); });
    connect(&m_cloud, &CloudSession::rememberingFailed, this, &Application::tellNotRemembered);
    connect(&m_instance, &SingleInstance::raiseRequested, m_mainWindow.get(), &ViewController::comeToFront);
    connect(&m_signals, &UnixSignals::endRequested, this, &Application::terminate);
    m_signals.listen();
    FileCalls::posix().setProgressHandler(&UnixSignals::extendTime); // a large file takes its time
    Trace::flushWhenIdle();
    qApp->installEventFilter(this);
    qApp->installEventFilter(&m_wheelGuard);
    qApp->installEventFilter(&m_windowMemory);
    m_mainWindow->show();
    offerRescued();
    s_running = this;
    std::atexit(&Application::saveAtExit); // last, as what is made after it is gone before it is called
}

// The guide is a key away in every window; in the main window its menu takes the key.
bool Application::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::HelpContents) &&
        qobject_cast<QWidget *>(watched)) {
        openGuide();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void Application::saveAtExit()
{
    if (Application *running = std::exchange(s_running, nullptr))
        running->m_lastSave->perform();
}

// What could not be saved at the last end, unless it has come into its file since.
void Application::offerRescued()
{
    const Documents &documents = Documents::standard();
    bool isAnyLeft = false;
    for (const QString &path : {documents.path(TaskListFile::name), documents.path(NotesFile::name),
                                QDir::current().absoluteFilePath(WhiteboardFile::name)}) {
        EarlierVersions versions = documents.versions(QFileInfo(path).fileName());
        for (const EarlierVersion &version : versions.rescued()) {
            const bool isSaved =
                SafeFile(path, contactsFolder()).look().bytes == versions.read(version).bytes;
            isAnyLeft = isAnyLeft || !isSaved || !versions.remove(version).isEmpty();
        }
    }
    QStringList elsewhere;
    for (const QString &name : {Clients::rescueFile, TeamMembers::rescueFile}) {
        for (const EarlierVersion &version : documents.versions(name).rescued())
            elsewhere +=
                tr("Contacts that could not be saved when Oblino ended lie in %1.").arg(version.path);
    }
    if (!elsewhere.isEmpty())
        m_mainWindow->tell(elsewhere);
    if (isAnyLeft)
        askAboutRescued();
}

void Application::askAboutRescued()
{
    auto *box =
        new QMessageBox(QMessageBox::Information, QApplication::applicationDisplayName(),
                        tr("When Oblino last ended, not everything could be saved. What was missing is kept "
                           "among the earlier versions, from where you can restore it."),
                        QMessageBox::NoButton, m_mainWindow.get());
    QPushButton *show = box->addButton(tr("Earlier &Versions…"), QMessageBox::AcceptRole);
    box->setDefaultButton(show);
    box->setEscapeButton(box->addButton(tr("&Later"), QMessageBox::RejectRole));
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(show, &QPushButton::clicked, m_mainWindow.get(), &ViewController::earlierVersionsRequested);
    box->open();
}

template<typename Window, typename... Arguments>
void Application::open(Arguments &&...arguments)
{
    openFrom<Window>(m_mainWindow.get(), std::forward<Arguments>(arguments)...);
}

template<typename Window, typename... Arguments>
void Application::openFrom(QWidget *parent, Arguments &&...arguments)
{
    auto *window = parent->findChild<Window *>();
    if (!window)
        window = new Window(std::forward<Arguments>(arguments)..., parent);
    window->setAttribute(Qt::WA_DeleteOnClose); // again, where one has outlived its closing
    window->show();
    window->raise();
    window->activateWindow();
}

void Application::connectWindows()
{
    connect(m_mainWindow.get(), &ViewController::clientsRequested, this,
            &Application::openContacts<ViewControllerClientMgmt>);
    connect(m_mainWindow.get(), &ViewController::teamMembersRequested, this,
            &Application::openContacts<ViewControllerTeamMgmt>);
    connect(m_mainWindow.get(), &ViewController::cloudAccountRequested, this,
            [this] { open<CloudAccountWindow>(m_cloud); });
    connect(m_mainWindow.get(), &ViewController::sendingRequested, this,
            [this] { open<ViewControllerSending>(tskMgr(), uiUtil(), m_sendingRun, contactsFolder()); });
    connect(m_mainWindow.get(), &ViewController::messagingSettingsRequested, this,
            [this] { open<ViewControllerSettings>(tskMgr(), uiUtil(), sendSMS); });
    connect(m_mainWindow.get(), &ViewController::eraserRequested, this, &Application::openEraser);
    connect(m_mainWindow.get(), &ViewController::earlierVersionsRequested, this,
            &Application::openEarlierVersions);
    connect(m_mainWindow.get(), &ViewController::startPageRequested, this, &Application::openGuide);
    connect(&m_sendingRun, &SendingRun::finished, m_mainWindow.get(), [this] {
        if (!m_mainWindow->findChild<ViewControllerSending *>())
            ViewControllerSending::tellFailure(uiUtil());
    });
    connect(m_mainWindow.get(), &ViewController::notesRequested, this,
            [this] { open<ViewControllerNotes>(tskMgr(), Documents::standard()); });
    connect(m_mainWindow.get(), &ViewController::whiteboardRequested, this, [this] {
        open<ViewControllerWhiteboard>(uiUtil(), m_sharingMenu, contactsFolder(),
                                       Documents::standard().folder().value_or(QString()));
    });
}

// From a modal window it must be one of that window's own: all others take no clicks.
void Application::openGuide()
{
    QWidget *modal = QApplication::activeModalWidget();
    openFrom<ViewControllerEnhancement>(modal ? modal : m_mainWindow.get());
}

void Application::openEraser()
{
    open<ViewControllerDestroy>(
        ErasableData{.store = tskMgr(),
                     .taskList = m_mainWindow->taskListFile(),
                     .documents = Documents::standard(),
                     .notifications = NotificationCenter::standard(),
                     .utilities = uiUtil(),
                     .privateFolder = contactsFolder(),
                     .beforeCloud = [this] { return ensurePassword(m_cloud, m_mainWindow.get()); },
                     .erased = [this](DataKind kind) { announceErasure(kind); }});
}

void Application::openEarlierVersions()
{
    open<EarlierVersionsWindow>(
        EarlierVersionsData{.store = tskMgr(),
                            .taskList = m_mainWindow->taskListFile(),
                            .documents = Documents::standard(),
                            .notifications = NotificationCenter::standard(),
                            .utilities = uiUtil(),
                            .notices = m_notices,
                            .privateFolder = contactsFolder(),
                            .saveOpen = [this](DataKind kind) { return saveOpen(kind); },
                            .restored = [this](DataKind kind) { announceRestoring(kind); }});
}

template<typename Window>
void Application::openContacts()
{
    open<Window>(contactsFolder());
    // Unsaved edits outlive the window's closing, so the main window tells of them.
    auto *window = m_mainWindow->findChild<Window *>();
    const QString title = window->workTitle();
    connect(window, &ContactWindow::savingFailed, m_mainWindow.get(),
            [this, title](const QString &error) { m_mainWindow->setTrouble(title, error); });
    connect(window, &ContactWindow::saved, m_mainWindow.get(),
            [this, title] { m_mainWindow->setTrouble(title, {}); });
}

QString Application::saveOpen(DataKind kind)
{
    for (FileWindow *window : m_mainWindow->findChildren<FileWindow *>()) {
        if (window->kind() == kind)
            return window->saveNow();
    }
    return {};
}

// What windows hold that nobody sees would come back with their next save.
void Application::announceErasure(DataKind kind)
{
    if (kind == DataKind::Whiteboard)
        m_sharingMenu.removeDraft();
    const bool holdsNames =
        kind != DataKind::Notes && kind != DataKind::Whiteboard && kind != DataKind::Cloud;
    if (holdsNames) { // as the filters do
        m_filters.clear();
        m_mainWindow->listKeptFilters();
    }
    for (ToolWindow *window : m_mainWindow->findChildren<ToolWindow *>())
        window->dataErased(kind);
}

void Application::announceRestoring(DataKind kind)
{
    for (ToolWindow *window : m_mainWindow->findChildren<ToolWindow *>())
        window->dataRestored(kind);
}

void Application::tellNotRemembered()
{
    auto *box =
        new QMessageBox(QMessageBox::Information, QApplication::applicationDisplayName(),
                        tr("The keyring did not take the password of the cloud account. It is used until "
                           "Oblino ends, and asked for again after that."),
                        QMessageBox::Ok, m_mainWindow.get());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void Application::bringBackTable()
{
    const Defaults &settings = Defaults::standard();
    m_mainWindow->setLook({settings.text(tableKeys.columns).value_or(QString()),
                           static_cast<int>(settings.integer(tableKeys.view)),
                           settings.text(tableKeys.order).value_or(QString()),
                           settings.boolean(tableKeys.isDescending)});
}

// Sizes and flags only, of the windows too; what cannot be written now is no loss.
void Application::rememberTable()
{
    Defaults &settings = Defaults::standard();
    const TableLook look = m_mainWindow->look();
    settings.setText(tableKeys.columns, look.columns);
    settings.setInteger(tableKeys.view, look.view);
    settings.setText(tableKeys.order, look.order);
    settings.setBool(tableKeys.isDescending, look.isDescending);
    m_windowMemory.rememberAll();
    (void)settings.save();
}

void Application::followAppearance()
{
    applyAppearance(tskMgr().inDarkMode());
}

// Whoever comes back to the program after a pause need not wait for the watch to wake up.
void Application::followDay()
{
    connect(&m_dayWatch, &DayWatch::dayChanged, this,
            [] { NotificationCenter::standard().post(QStringLiteral("dayChanged")); });
    connect(qApp, &QApplication::applicationStateChanged, &m_dayWatch, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            m_dayWatch.look();
    });
}

bool Application::confirmQuit()
{
    return (!m_sendingRun.isRunning() ||
            uiUtil().dialogYesNo(tr("Messages are still being sent. End all the same?"),
                                 tr("The messages that have not been sent yet will not be sent."))) &&
           m_lastSave->confirmed();
}

// Windows save what they save on closing. An open question is not closed, which would answer it: it ends
// without an answer when the event loops end.
void Application::terminate()
{
    disconnect(m_mainWindow.get(), &ViewController::terminationRequested, this, nullptr);
    m_mainWindow->setQuitGuard([] { return true; }); // it has asked, or there is no time to
    m_mainWindow->giveUpForms();
    rememberTable();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && !qobject_cast<QMessageBox *>(window))
            window->close();
    }
    m_lastSave->perform();
    s_running = nullptr;
    QCoreApplication::exit(0);
}

} // namespace oblino
