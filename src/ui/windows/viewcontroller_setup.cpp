// Putting the main window together.
#include <ui/windows/viewcontroller.h>

#include <controls/elidedlabel.h>
#include <controls/emptystate.h>
#include <controls/icons.h>
#include <controls/noticebar.h>
#include <controls/searchfield.h>
#include <ui/windows/tasktable.h>
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
    const auto button = [this](QAction *action, const char *name) {
        auto *made = qobject_cast<QToolButton *>(m_ui->commandBar->widgetForAction(action));
        made->setObjectName(QLatin1String(name));
        return made;
    };
    deleteButton = button(m_ui->deleteAction, "deleteButton");
    hideButton = button(m_ui->hideAction, "hideButton");
    upperButton = button(m_ui->moveUpAction, "upperButton");
    downerButton = button(m_ui->moveDownAction, "downerButton");
    editButton = button(m_ui->editAction, "editButton");
    shareButton = button(m_ui->shareAction, "shareButton");
    new ActsOnMouseDown(shareButton);
    cloneButton = button(m_ui->cloneAction, "cloneButton");
    closeButton = button(m_ui->closeAction, "closeButton");
    tblView = m_ui->tblView;
    viewSelection = m_ui->viewSelection;
    searchField = m_ui->searchField;

    statusMessageLabel = statusLabel<ElidedLabel>(this, QStringLiteral("statusMessageLabel"));
    m_saveState = statusLabel<QLabel>(this, QStringLiteral("saveState"));
    statusMessage = statusLabel<QLabel>(this, QStringLiteral("statusMessage"));
    m_noticeBar = m_ui->noticeBar;
    m_ui->statusBar->addWidget(statusMessageLabel, 1);
    m_ui->statusBar->addPermanentWidget(m_saveState);
    m_ui->statusBar->addPermanentWidget(statusMessage);

    for (QAction *action : findChildren<QAction *>()) {
        m_toolTips.insert(action, action->toolTip());
        if (const QString icon = action->property("iconName").toString(); !icon.isEmpty())
            action->setIcon(themedIcon(icon));
    }
}

void ViewController::connectCommands()
{
    const auto command = [this](QAction *action, auto call) {
        connect(action, &QAction::triggered, this, call);
    };
    command(m_ui->deleteAction, [this] { btnDeleteTask_Click(deleteButton); });
    command(m_ui->hideAction, [this] { hideClicked(); });
    command(m_ui->cloneAction, [this] { cloneTask(cloneButton); });
    command(m_ui->closeAction, [this] { closeTask(closeButton); });
    command(m_ui->moveUpAction, [this] { upper(); });
    command(m_ui->moveDownAction, [this] { downer(); });
    command(m_ui->copyAction, [this] { copyTask(); });
    command(m_ui->copyKeyAction, [this] { copyKey(); });
    command(m_ui->findAction, [this] {
        searchField->setFocus(Qt::ShortcutFocusReason);
        searchField->selectAll();
    });
    command(m_ui->clearSearchAction, [this] { searchField->clear(); });
    command(m_ui->clientsAction, &ViewController::clientsRequested);
    command(m_ui->teamMembersAction, &ViewController::teamMembersRequested);
    command(m_ui->sendAction, &ViewController::sendingRequested);
    command(m_ui->settingsAction, &ViewController::messagingSettingsRequested);
    command(m_ui->cloudAccountAction, &ViewController::cloudAccountRequested);
    command(m_ui->notesAction, &ViewController::notesRequested);
    command(m_ui->whiteboardAction, &ViewController::whiteboardRequested);
    command(m_ui->earlierVersionsAction, &ViewController::earlierVersionsRequested);
    command(m_ui->eraserAction, &ViewController::eraserRequested);
    command(m_ui->startPageAction, [this] { addEnhancement(m_ui->startPageAction); });
    command(m_ui->newTaskAction, [this] { newTask(); });
    command(m_ui->editAction, [this] { editTask(); });
    command(m_ui->shareAction, [this] { sharingTask(shareButton); });
    command(m_ui->updateToCloudAction, [this] { UpdateToCloud(m_ui->updateToCloudAction); });
    command(m_ui->updateFromCloudAction, [this] { UpdateFromCoud(m_ui->updateFromCloudAction); });
    command(m_ui->aboutAction, [this] { about(); });
    command(m_ui->quitAction, [this] { close(); });

    connect(&m_store, &TaskManager::cloudWaitBegan, this, &ViewController::holdCommands);
    connect(&m_store, &TaskManager::cloudProgressed, this, &ViewController::showCloudProgress);
    connect(&m_store, &TaskManager::cloudWaitEnded, this, &ViewController::releaseCommands);
    connect(&m_store, &TaskManager::cloudFailed, this, &ViewController::showCloudCause);
    connect(&m_store, &TaskManager::cloudSucceeded, this, [this] { showCloudCause({}); });
    connect(viewSelection, &QComboBox::currentIndexChanged, this, &ViewController::ChangeView);
    connect(searchField, &QLineEdit::textChanged, this, &ViewController::search);
    connect(searchField, &SearchField::left, tblView, [this] {
        tblView->setFocus(Qt::OtherFocusReason);
        if (m_model.rowCount() > 0 && !tblView->selectionModel()->hasSelection())
            tblView->selectRow(0);
    });
    m_ui->editAction->setShortcuts({m_ui->editAction->shortcut(), Qt::Key_F2});
    connect(tblView, &QTableView::doubleClicked, this, &ViewController::doubleClickTable);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, tblView);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &ViewController::editTask);
    }
}

void ViewController::fillViews()
{
    m_views = new QActionGroup(this);
    const QStringList labels = viewLabels();
    viewSelection->addItems(labels);
    viewSelection->setMaxVisibleItems(static_cast<int>(labels.size()));
    for (int i = 0; i < labels.size(); ++i) {
        QAction *action =
            m_ui->viewMenu->addAction(labels.at(i), this, [this, i] { viewSelection->setCurrentIndex(i); });
        action->setCheckable(true);
        action->setChecked(i == 0);
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + (i + 1) % 10)));
        m_views->addAction(action);
    }
}

void ViewController::fillSortMenu()
{
    m_ui->viewMenu->addSeparator();
    QMenu *menu = m_ui->viewMenu->addMenu(tr("&Sort By"));
    QHeaderView *header = tblView->horizontalHeader();
    for (int column = 0; column < m_model.columnCount(); ++column) {
        menu->addAction(TaskTableModel::titles().at(column), this,
                        [header, column] { header->setSortIndicator(column, Qt::AscendingOrder); });
    }
    menu->addSeparator();
    QAction *reverse = menu->addAction(tr("&Reverse Order"), this, &ViewController::reverseOrder);
    reverse->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
}

void ViewController::prepareTable()
{
    tblView->setModel(&m_model);
    m_emptyState = new EmptyState(tblView->viewport());

    connect(tblView->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
            &ViewController::sortDescriptorsDidChange);
    connect(tblView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ViewController::tableViewSelectionDidChange);
    resize(size().boundedTo(screen()->availableSize()));
}

} // namespace oblino
