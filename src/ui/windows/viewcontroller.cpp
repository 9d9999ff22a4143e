#include <ui/windows/viewcontroller.h>

#include <controls/emptystate.h>
#include <controls/noticebar.h>
#include <controls/searchfield.h>
#include <ui/uiutil.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/taskundo.h>
#include <ui/windows/taskwindow.h>
#include <ui_viewcontroller.h>

#include <base/notificationcenter.h>
#include <base/trace.h>
#include <controls/windowsize.h>
#include <core/taskmanager.h>
#include <core/taskviews.h>

#include <QActionGroup>
#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QSignalBlocker>
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
    , m_watch(m_file.path())
    , m_undo(new TaskUndo(
          store, [this] { return m_file.invertedColors(); }, this))
    , m_dataFolder(dataFolder)
{
    m_ui->setupUi(this);
    bindOutlets();
    prepareTable();
    fillViews();
    fillSortMenu();
    connectCommands();
    connectFilter();
    viewDidLoad();
}

ViewController::~ViewController() = default;

void ViewController::viewDidLoad()
{
    m_utilities.prepareSound();
    splitStringFile(readFromFile());
    m_store.setRecording(true);
    m_ui->viewSelection->setCurrentIndex(0);
    for (const QString &identifier : TaskTableModel::identifiers())
        m_sortPrototypes.append({identifier, true});
    m_order = m_sortPrototypes.first();
    m_store.sort(m_order);
    reload();
    disableSelectionButtons();
    trace("Dark Mode:", m_store.inDarkMode());

    connect(&m_watch, &FileWatch::changed, this, &ViewController::lookAtFile);
    m_notifications.observe(QStringLiteral("reload"), this, [this] { reloadTableData(); });
    m_notifications.observe(QStringLiteral("update"), this, [this] { updateComplete(); });
    m_notifications.observe(QStringLiteral("AppleInterfaceThemeChangedNotification"), this,
                            [this] { interfaceModeChanged(); });
    m_notifications.observe(QStringLiteral("dayChanged"), this, [this] { dayChanged(); });
    connect(&m_store, &TaskManager::taskAdded, this, [this](const QString &key) { m_added.insert(key); });
}

void ViewController::viewWillAppear()
{
    reload();
    disableSelectionButtons();
    setLeastSize(*this, {1040, 430});
    m_ui->tblView->setFocus(Qt::OtherFocusReason);
    if (const int row = rowOfToday(); row >= 0)
        m_ui->tblView->goToRow(row, QAbstractItemView::PositionAtTop);
}

void ViewController::giveUpForms()
{
    for (TaskWindow *form : findChildren<TaskWindow *>())
        form->giveUp();
}

bool ViewController::windowShouldClose()
{
    trace("Close");
    for (TaskWindow *form : findChildren<TaskWindow *>()) {
        if (!form->mayClose())
            return false;
    }
    takeUpChanges(); // what a form has put off until now
    if (!m_quitGuard())
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

// Not every file system tells of changes; a look costs next to nothing. Whoever closed a form over this
// window may be in the middle of changing the list.
void ViewController::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        QMetaObject::invokeMethod(this, &ViewController::lookAtFile, Qt::QueuedConnection);
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
    if (viewIndex() >= viewLabels().size()) { // a filter that was kept, which is seen through the view
        const QString name = m_ui->viewSelection->currentText();
        const QSignalBlocker blocker(m_ui->viewSelection);
        m_ui->viewSelection->setCurrentIndex(m_view);
        return chooseKeptFilter(name);
    }
    m_view = viewIndex();
    trace("Change View", viewIndex());
    m_views->actions().at(viewIndex())->setChecked(true);
    disableSelectionButtons();
    reinitForSearching();
    reload();
    m_ui->tblView->goToRow(0);
    showMessage({});
}

void ViewController::reloadTableData()
{
    invalidateSortOrder();
    changeList();
}

void ViewController::interfaceModeChanged()
{
    trace("Dark mode change");
    m_file.interfaceModeChanged();
    reinitForSearching();
    invalidateSortOrder();
    disableSelectionButtons();
    reload();
    showNotices();
}

bool ViewController::saveToFile()
{
    m_undo->take();
    m_ui->tblView->viewport()->repaint(); // the change is seen before the disk has taken its time
    const QString key = keyOfShownSelection();
    const bool saved = m_file.saveToFile();
    if (m_file.takeMerged())
        showChangedList(key);
    m_undo->take(TaskUndo::Sorting::OfTheStepBefore); // what another program has written
    m_undo->setSaved();
    m_ui->noticeBar->showNotices({}); // of before this change
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

void ViewController::lookAtFile()
{
    // What a form shows is compared when it is confirmed; the cloud is on its way from or to this list.
    if (!isFormOpen() && !m_store.isWaitingForCloud())
        takeUpChanges();
}

void ViewController::takeUpChanges()
{
    const QString key = keyOfShownSelection();
    if (m_file.takeUpChanges()) {
        showChangedList(key);
        m_undo->take(TaskUndo::Sorting::OfTheStepBefore);
        if (m_file.hasUnsavedChanges())
            saveToFile();
    }
    showNotices();
}

// The list is another one: what was seen and selected of it stays, as far as it is still there.
void ViewController::showChangedList(const QString &selectedKey)
{
    if (m_keepsOrder || m_ui->tblView->horizontalHeader()->sortIndicatorSection() >= 0)
        m_store.sort(m_order);
    reinitForSearching();
    showOn(selectedKey);
}

// The end of a step that was undone, or done again.
void ViewController::showReplayed(const QString &key, const QString &said)
{
    orderByHand(); // as it was then
    reload();
    disableSelectionButtons();
    if (const int row = key.isEmpty() ? -1 : rowOfKey(key); row >= 0)
        restoreSelection(key);
    showMessage(said);
    saveToFile();
}

void ViewController::dayChanged()
{
    if (!m_store.isWaitingForCloud()) // after which the table is reloaded anyway
        showOn(keyOfShownSelection());
}

void ViewController::showOn(const QString &selectedKey)
{
    const int scrolled = m_ui->tblView->verticalScrollBar()->value();
    reload();
    if (!selectedKey.isEmpty())
        restoreSelection(selectedKey);
    m_ui->tblView->verticalScrollBar()->setValue(scrolled);
}

bool ViewController::isFormOpen() const
{
    const QList<TaskWindow *> forms = findChildren<TaskWindow *>();
    return std::any_of(forms.cbegin(), forms.cend(),
                       [](const TaskWindow *form) { return form->isVisible(); });
}

QString ViewController::workTitle() const
{
    return tr("The list");
}

QString ViewController::saveNow()
{
    return saveToFile() && !isUnsaved() ? QString() : m_file.failure();
}

QString ViewController::rescue()
{
    return m_file.rescue();
}

} // namespace oblino
