// Putting the main window together.
#include <ui/windows/viewcontroller.h>

#include <controls/elidedlabel.h>
#include <controls/emptystate.h>
#include <controls/icons.h>
#include <controls/noticebar.h>
#include <controls/searchfield.h>
#include <controls/shortcutlist.h>
#include <ui/windows/tasktable.h>
#include <ui/windows/taskundo.h>
#include <ui_viewcontroller.h>

#include <core/taskmanager.h>
#include <core/taskviews.h>

#include <QActionGroup>
#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QScreen>
#include <QShortcut>
#include <QToolButton>

#include <functional>

namespace oblino {

namespace {

template<typename Label>
QLabel *statusLabel(QWidget *parent, const QString &name)
{
    auto *label = new Label(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setContentsMargins(12, 4, 12, 4);
    return label;
}

// Has a button act when the mouse goes down on it, not when it comes up.
class ActsOnMouseDown : public QObject
{
public:
    explicit ActsOnMouseDown(QToolButton *button)
        : QObject(button)
    {
        button->installEventFilter(this);
    }

    bool eventFilter(QObject *button, QEvent *event) override
    {
        const bool down =
            event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
        if (!down || static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
            return false;
        static_cast<QToolButton *>(button)->click();
        return true;
    }
};

} // namespace

void ViewController::bindOutlets()
{
    const std::initializer_list<std::pair<QAction *, const char *>> buttons = {
        {m_ui->deleteAction, "deleteButton"}, {m_ui->hideAction, "hideButton"},
        {m_ui->moveUpAction, "upperButton"},  {m_ui->moveDownAction, "downerButton"},
        {m_ui->editAction, "editButton"},     {m_ui->shareAction, "shareButton"},
        {m_ui->cloneAction, "cloneButton"},   {m_ui->closeAction, "closeButton"}};
    for (const auto &[action, name] : buttons)
        m_ui->commandBar->widgetForAction(action)->setObjectName(QLatin1String(name));
    // Their texts change, and the buttons behind them are not to move.
    const auto keepWide = [this](QAction *action, const QString &longest) {
        QWidget *button = m_ui->commandBar->widgetForAction(action);
        button->setMinimumWidth(button->fontMetrics().horizontalAdvance(longest) + 12);
    };
    keepWide(m_ui->closeAction, tr("Reopen"));
    keepWide(m_ui->hideAction, tr("Unhide"));
    new ActsOnMouseDown(qobject_cast<QToolButton *>(m_ui->commandBar->widgetForAction(m_ui->shareAction)));

    statusMessageLabel = statusLabel<ElidedLabel>(this, QStringLiteral("statusMessageLabel"));
    m_saveState = statusLabel<QLabel>(this, QStringLiteral("saveState"));
    statusMessage = statusLabel<QLabel>(this, QStringLiteral("statusMessage"));
    m_ui->statusBar->addWidget(statusMessageLabel, 1);
    m_due = statusLabel<QLabel>(this, QStringLiteral("due"));
    m_ui->statusBar->addPermanentWidget(m_due);
    m_ui->statusBar->addPermanentWidget(m_saveState);
    m_ui->statusBar->addPermanentWidget(statusMessage);

    for (QAction *action : findChildren<QAction *>()) {
        m_toolTips.insert(action, action->toolTip());
        if (action != m_ui->hideAction) // whose tool tip says which way it works
            action->setToolTip(toolTipWithShortcut(action->toolTip(), *action));
        if (const QString icon = action->property("iconName").toString(); !icon.isEmpty())
            action->setIcon(themedIcon(icon));
    }
}

void ViewController::connectCommands()
{
    using Command = void (ViewController::*)();
    const std::initializer_list<std::pair<QAction *, Command>> commands = {
        {m_ui->newTaskAction, &ViewController::newTask},
        {m_ui->editAction, &ViewController::editTask},
        {m_ui->hideAction, &ViewController::hideClicked},
        {m_ui->moveUpAction, &ViewController::upper},
        {m_ui->moveDownAction, &ViewController::downer},
        {m_ui->closeAction, &ViewController::closeOrReopen},
        {m_ui->todayAction, &ViewController::goToToday},
        {m_ui->repeatAction, &ViewController::repeatTask},
        {m_ui->clientOfAction, &ViewController::changeClient},
        {m_ui->teamMemberOfAction, &ViewController::changeTeamMember},
        {m_ui->daysAction, &ViewController::moveByDays},
        {m_ui->colorAction, &ViewController::changeColor},
        {m_ui->copyAction, &ViewController::copyTask},
        {m_ui->copyKeyAction, &ViewController::copyKey},
        {m_ui->findAction, &ViewController::find},
        {m_ui->clientsAction, &ViewController::clientsRequested},
        {m_ui->teamMembersAction, &ViewController::teamMembersRequested},
        {m_ui->sendAction, &ViewController::sendingRequested},
        {m_ui->settingsAction, &ViewController::messagingSettingsRequested},
        {m_ui->cloudAccountAction, &ViewController::cloudAccountRequested},
        {m_ui->notesAction, &ViewController::notesRequested},
        {m_ui->whiteboardAction, &ViewController::whiteboardRequested},
        {m_ui->earlierVersionsAction, &ViewController::earlierVersionsRequested},
        {m_ui->eraserAction, &ViewController::eraserRequested},
        {m_ui->shortcutsAction, &ViewController::showShortcuts},
        {m_ui->aboutAction, &ViewController::about}};
    for (const auto &[action, command] : commands)
        connect(action, &QAction::triggered, this, command);

    using SentCommand = void (ViewController::*)(QObject * sender);
    const std::initializer_list<std::pair<QAction *, SentCommand>> sentCommands = {
        {m_ui->deleteAction, &ViewController::btnDeleteTask_Click},
        {m_ui->cloneAction, &ViewController::cloneTask},
        {m_ui->shareAction, &ViewController::sharingTask},
        {m_ui->startPageAction, &ViewController::addEnhancement},
        {m_ui->updateToCloudAction, &ViewController::UpdateToCloud},
        {m_ui->updateFromCloudAction, &ViewController::UpdateFromCoud}};
    for (const auto &[action, command] : sentCommands) {
        QObject *sender = m_ui->commandBar->widgetForAction(action);
        connect(action, &QAction::triggered, this, std::bind_front(command, this, sender));
    }
    m_undo->drive(*m_ui->undoAction, *m_ui->redoAction);
    connect(m_undo, &TaskUndo::replayed, this, &ViewController::showReplayed);
    connect(m_ui->clearSearchAction, &QAction::triggered, m_ui->searchField, &QLineEdit::clear);
    connect(m_ui->quitAction, &QAction::triggered, this, &QWidget::close);

    connect(&m_store, &TaskManager::cloudWaitBegan, this, &ViewController::holdCommands);
    connect(&m_store, &TaskManager::cloudProgressed, this, &ViewController::showCloudProgress);
    connect(&m_store, &TaskManager::cloudWaitEnded, this, &ViewController::releaseCommands);
    connect(&m_store, &TaskManager::cloudFailed, this, &ViewController::showCloudCause);
    connect(&m_store, &TaskManager::cloudSucceeded, this, [this] { showCloudCause({}); });
    connect(m_ui->viewSelection, &QComboBox::currentIndexChanged, this, &ViewController::ChangeView);
    connect(m_ui->searchField, &QLineEdit::textChanged, this, &ViewController::search);
    connect(m_ui->searchField, &SearchField::left, m_ui->tblView, [this] {
        m_ui->tblView->setFocus(Qt::OtherFocusReason);
        if (m_model.rowCount() > 0 && !m_ui->tblView->selectionModel()->hasSelection())
            m_ui->tblView->selectOnly(0);
    });
    m_ui->editAction->setShortcuts({m_ui->editAction->shortcut(), Qt::Key_F2});
    connect(m_ui->tblView, &QTableView::doubleClicked, this, &ViewController::doubleClickTable);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_ui->tblView);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &ViewController::editTask);
    }
}

void ViewController::find()
{
    m_ui->searchField->setFocus(Qt::ShortcutFocusReason);
    m_ui->searchField->selectAll();
}

void ViewController::fillViews()
{
    m_views = new QActionGroup(this);
    const QStringList labels = viewLabels();
    m_ui->viewSelection->addItems(labels);
    m_ui->viewSelection->setMaxVisibleItems(static_cast<int>(labels.size()));
    for (int i = 0; i < labels.size(); ++i) {
        QAction *action = m_ui->viewMenu->addAction(labels.at(i), this,
                                                    [this, i] { m_ui->viewSelection->setCurrentIndex(i); });
        action->setCheckable(true);
        action->setChecked(i == 0);
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + (i + 1) % 10)));
        m_views->addAction(action);
    }
    m_filtersMenu = m_ui->viewMenu->addMenu(tr("&Kept Filters"));
    m_filtersMenu->setEnabled(false);
}

void ViewController::addContextMenus()
{
    TaskTable *table = m_ui->tblView;
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table, &QWidget::customContextMenuRequested, this, [this, table](QPoint point) {
        const bool isByKey = QGuiApplication::mouseButtons() == Qt::NoButton;
        if (isByKey && table->currentIndex().isValid()) // of the keyboard: at the row
            point = table->visualRect(table->currentIndex()).bottomLeft();
        m_ui->taskMenu->popup(table->viewport()->mapToGlobal(point));
    });
    auto *columns = new QMenu(tr("&Columns"), this);
    m_columnsMenu = columns;
    connect(columns, &QMenu::aboutToShow, table, [table, columns] { table->fillColumnMenu(*columns); });
    QHeaderView *header = table->horizontalHeader();
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, columns, [columns, header](const QPoint &point) {
        columns->popup(header->viewport()->mapToGlobal(point));
    });
}

void ViewController::prepareTable()
{
    m_ui->tblView->setModel(&m_model);
    m_emptyState = new EmptyState(m_ui->tblView->viewport());

    connect(m_ui->tblView->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
            &ViewController::sortDescriptorsDidChange);
    connect(m_ui->tblView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ViewController::tableViewSelectionDidChange);
    // Of several rows that are selected the current one counts, which follows the selection.
    connect(m_ui->tblView->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        if (isManySelected())
            tableViewSelectionDidChange();
    });
    connect(m_ui->tblView, &TaskTable::rowsDropped, this, &ViewController::moveRows);
    addContextMenus();
    resize(size().boundedTo(screen()->availableSize()));
}

} // namespace oblino
