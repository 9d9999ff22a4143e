#include <ui/viewcontroller.h>

#include <ui/emptystate.h>
#include <ui/searchfield.h>
#include <ui/uiutil.h>
#include <ui_viewcontroller.h>

#include <core/taskmanager.h>
#include <core/tasksearch.h>
#include <core/taskviews.h>
#include <platform/notificationcenter.h>
#include <platform/trace.h>
#include <platform/widgets/windowsize.h>

#include <QActionGroup>
#include <QCloseEvent>
#include <QLabel>
#include <QTableView>
#include <QToolButton>

namespace oblino {

ViewController::ViewController(TaskManager &store, Documents &documents, UIUtil &utilities,
                               NotificationCenter &notifications, const QString &dataFolder, QWidget *parent)
    : QMainWindow(parent)
    , m_ui(std::make_unique<Ui::ViewController>())
    , m_store(store)
    , m_utilities(utilities)
    , m_notifications(notifications)
    , m_file(store, documents)
    , m_model(*this)
    , m_dataFolder(dataFolder)
{
    m_ui->setupUi(this);
    bindOutlets();
    prepareTable();
    fillViews();
    fillSortMenu();
    connectCommands();
    viewDidLoad();
}

ViewController::~ViewController() = default;

void ViewController::viewDidLoad()
{
    m_utilities.prepareSound();
    splitStringFile(readFromFile());
    viewSelection->setCurrentIndex(0);
    for (const QString &identifier : TaskTableModel::identifiers())
        m_sortPrototypes.append({identifier, true});
    m_store.sort(m_sortPrototypes.first());
    reload();
    disableSelectionButtons();
    trace("Dark Mode:", m_store.inDarkMode());

    m_notifications.observe(QStringLiteral("reload"), this, [this] { reloadTableData(); });
    m_notifications.observe(QStringLiteral("update"), this, [this] { updateComplete(); });
    m_notifications.observe(QStringLiteral("AppleInterfaceThemeChangedNotification"), this,
                            [this] { interfaceModeChanged(); });
}

void ViewController::viewWillAppear()
{
    reload();
    disableSelectionButtons();
    setLeastSize(*this, {1040, 430});
}

bool ViewController::windowShouldClose()
{
    trace("Close");
    if (!m_beforeEnd())
        return false;
    Q_EMIT terminationRequested();
    return true;
}

void ViewController::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        viewWillAppear();
    QMainWindow::showEvent(event);
}

void ViewController::closeEvent(QCloseEvent *event)
{
    event->setAccepted(windowShouldClose());
}

void ViewController::comeToFront()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void ViewController::ChangeView()
{
    trace("Change View", viewIndex());
    m_views->actions().at(viewIndex())->setChecked(true);
    disableSelectionButtons();
    reinitForSearching();
    reload();
    tblView->scrollToTop();
}

void ViewController::search()
{
    const QString key = keyOfShownSelection();
    const QString term = searchField->text();
    if (!term.isEmpty()) {
        trace(term);
        m_store.setIsSearching(true);
        m_store.setSearchTerm(term);
        trace("Tasks:", m_store.tasks());
        trace("Backup Tasks:", m_store.backupTasks());
        reinitForSearching();
    } else {
        trace("isEmpty");
        m_store.setIsSearching(false);
    }
    reload();
    restoreSelection(key);
}

void ViewController::reinitForSearching()
{
    if (m_store.isSearching())
        m_store.setTasks(tasksMatching(m_store.backupTasks(), m_store.searchTerm()));
}

void ViewController::reloadTableData()
{
    forgetSortOrder();
    changeList();
}

void ViewController::updateComplete()
{
    statusMessageLabel->setText(m_store.lastMessage());
}

void ViewController::interfaceModeChanged()
{
    trace("Dark mode change");
    if (m_file.hasUnsavedChanges() && !saveToFile()) {
        // The file is older than the list in memory; reading it would lose what the user has done.
        m_file.followAppearance();
        reinitForSearching();
    } else {
        // The rows are added to the full list, which is `tasks` only outside a search.
        const bool searching = m_store.isSearching();
        m_store.setIsSearching(false);
        m_store.setTasks({});
        splitStringFile(readFromFile());
        m_store.setIsSearching(searching);
        reinitForSearching();
    }
    forgetSortOrder();
    disableSelectionButtons();
    reload();
    showNotices();
}

bool ViewController::saveToFile()
{
    tblView->viewport()->repaint(); // the change is seen before the disk has taken its time
    const bool saved = m_file.saveToFile();
    showNotices();
    return saved;
}

QString ViewController::readFromFile()
{
    return m_file.readFromFile();
}

QString ViewController::splitStringFile(const QString &joinedStr)
{
    QString nothing = m_file.splitStringFile(joinedStr);
    showNotices();
    return nothing;
}

void ViewController::showNotices()
{
    const QStringList notices = m_file.takeNotices();
    if (notices.isEmpty())
        return;
    statusMessageLabel->setText(notices.join(QLatin1Char(' ')));
}

} // namespace oblino
