#include <tools/windows/earlierversionswindow.h>

#include <base/noticelog.h>
#include <controls/emptystate.h>
#include <controls/tableheader.h>
#include <core/tasklistfile.h>
#include <core/taskmanager.h>
#include <tools/notesfile.h>
#include <tools/whiteboardfile.h>
#include <ui_earlierversionswindow.h>

#include <QDir>
#include <QHeaderView>
#include <QLocale>
#include <QShortcut>
#include <QStyledItemDelegate>

#include <algorithm>
#include <array>
#include <utility>

namespace oblino {

namespace {

constexpr std::array kinds = {DataKind::Tasks, DataKind::Notes, DataKind::Whiteboard};

// Paints the text of a cell where the header has its title.
class PaddedCells : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        constexpr int padding = 5; // to what the style leaves free
        QStyleOptionViewItem cell = option;
        cell.state &= ~QStyle::State_HasFocus; // the selected row says enough
        const QStyleOptionViewItem whole = cell;
        initStyleOption(&cell, index);
        cell.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);
        cell = whole;
        cell.rect.adjust(padding, 0, -padding, 0);
        QStyledItemDelegate::paint(painter, cell, index);
    }
};

void enable(QPushButton *button, const QString &reason, const QString &toolTip)
{
    button->setEnabled(reason.isEmpty());
    button->setToolTip(reason.isEmpty() ? toolTip : reason);
}

} // namespace

EarlierVersionsWindow::EarlierVersionsWindow(EarlierVersionsData shownData, QWidget *parent)
    : ToolWindow(parent, {560, 400})
    , m_data(std::move(shownData))
    , m_ui(std::make_unique<Ui::EarlierVersionsWindow>())
{
    m_ui->setupUi(this);
    m_emptyState = new EmptyState(m_ui->emptyPage);
    prepareTabs();
    prepareTable();
    connectControls();
    refresh();
}

EarlierVersionsWindow::~EarlierVersionsWindow() = default;

void EarlierVersionsWindow::prepareTabs()
{
    for (const QString &title : {tr("&Tasks"), tr("&Notes"), tr("&Whiteboard"), tr("What Was &Said")})
        m_ui->tabs->addTab(title);
    m_ui->tabs->setDrawBase(false);
    m_ui->tabs->setExpanding(false);
    connect(m_ui->tabs, &QTabBar::currentChanged, this, [this] {
        m_ui->resultLabel->clear();
        refresh();
    });
}

void EarlierVersionsWindow::prepareTable()
{
    QTableView *table = m_ui->versionTable;
    table->setHorizontalHeader(new TableHeader(table));
    table->setModel(&m_model);
    table->setItemDelegate(new PaddedCells(table));
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
    QHeaderView *header = table->horizontalHeader();
    header->setSortIndicator(-1, Qt::DescendingOrder);
    const auto wide = [this](const QString &text) { return fontMetrics().horizontalAdvance(text) + 24; };
    const QDateTime longest(QDate(2026, 12, 28), QTime(22, 58, 58));
    header->resizeSection(VersionTableModel::TimeColumn, wide(VersionTableModel::timeText(longest)));
    header->setSectionResizeMode(VersionTableModel::ReasonColumn, QHeaderView::Stretch);
    header->resizeSection(VersionTableModel::AmountColumn, wide(QStringLiteral("100,000")));
    header->resizeSection(VersionTableModel::DifferenceColumn, wide(QStringLiteral("+100 −100 ≠100")));
    m_ui->splitter->setStretchFactor(0, 2);
    m_ui->splitter->setStretchFactor(1, 3);
}

void EarlierVersionsWindow::connectControls()
{
    connect(m_ui->versionTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &EarlierVersionsWindow::showSelected);
    connect(m_ui->look, &VersionLook::selectionChanged, this, &EarlierVersionsWindow::enableButtons);
    connect(m_ui->asTextBox, &QCheckBox::toggled, this, &EarlierVersionsWindow::showSelected);
    connect(m_ui->restoreButton, &QPushButton::clicked, this, &EarlierVersionsWindow::restore);
    connect(m_ui->restoreTasksButton, &QPushButton::clicked, this,
            &EarlierVersionsWindow::restoreSelectedTasks);
    connect(m_ui->deleteButton, &QPushButton::clicked, this, &EarlierVersionsWindow::removeSelected);
    connect(m_ui->closeButton, &QPushButton::clicked, this, &QDialog::close);
    auto *deleting = new QShortcut(QKeySequence::Delete, m_ui->versionTable);
    deleting->setContext(Qt::WidgetShortcut);
    connect(deleting, &QShortcut::activated, m_ui->deleteButton, &QPushButton::click);
    for (const auto change : {&TaskManager::cloudWaitBegan, &TaskManager::cloudWaitEnded})
        connect(&m_data.store, change, this, &EarlierVersionsWindow::enableButtons);
    connect(&m_data.notices, &NoticeLog::added, this, &EarlierVersionsWindow::showNotices);
    connect(&m_work, &QTimer::timeout, this, &EarlierVersionsWindow::summariseNext);
}

bool EarlierVersionsWindow::showsNotices() const
{
    return m_ui->tabs->currentIndex() >= static_cast<int>(kinds.size());
}

DataKind EarlierVersionsWindow::kind() const
{
    return kinds.at(static_cast<size_t>(m_ui->tabs->currentIndex()));
}

EarlierVersions EarlierVersionsWindow::versions() const
{
    if (kind() == DataKind::Whiteboard)
        return WhiteboardFile::versions(m_data.privateFolder, m_data.documents.folder().value_or(QString()));
    return m_data.documents.versions(kind() == DataKind::Tasks ? TaskListFile::name : NotesFile::name);
}

QString EarlierVersionsWindow::filePath() const
{
    return kind() == DataKind::Whiteboard ? QDir::current().absoluteFilePath(WhiteboardFile::name)
                                          : m_data.documents.path(NotesFile::name);
}

Today EarlierVersionsWindow::today() const
{
    if (kind() == DataKind::Tasks)
        return {ComparedList(m_data.store.fullList(), m_data.taskList.invertedColors()), {}};
    return {{}, SafeFile(filePath(), m_data.privateFolder).look().bytes};
}

VersionContent EarlierVersionsWindow::contentOf(const EarlierVersion &version) const
{
    return versionContent(kind(), version.reason, versions().read(version));
}

int EarlierVersionsWindow::selectedRow() const
{
    const QModelIndexList rows = m_ui->versionTable->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void EarlierVersionsWindow::refresh()
{
    const int row = selectedRow();
    const QString selected = row < 0 ? QString() : m_model.versions().at(row).path;
    m_comparedTasks = m_data.store.fullList();
    if (showsNotices())
        return showNotices();
    m_today = today();
    m_model.show(kind(), versions().list());
    const auto isSelected = [&](const EarlierVersion &version) { return version.path == selected; };
    const auto &all = m_model.versions();
    const auto found = std::find_if(all.begin(), all.end(), isSelected);
    list(found == all.end() ? 0 : static_cast<int>(found - all.begin()));
}

void EarlierVersionsWindow::list(int row)
{
    const bool isEmpty = m_model.rowCount() == 0;
    m_ui->pages->setCurrentWidget(isEmpty ? m_ui->emptyPage : m_ui->versionsPage);
    m_emptyState->setText(tr("No earlier versions yet"),
                          tr("The first change of a day keeps what there was before it, for 30 days."));
    m_ui->versionTable->selectRow(std::min(row, m_model.rowCount() - 1));
    showSelected();
    m_work.start(0);
}

// Reading and comparing many long lists takes a while, in which the window is to answer.
void EarlierVersionsWindow::summariseNext()
{
    const int row = m_model.rowWithoutSummary(m_ui->versionTable->rowAt(0));
    if (row < 0 || showsNotices())
        m_work.stop();
    else
        m_model.setSummary(row, versionSummary(contentOf(m_model.versions().at(row)), m_today));
}

void EarlierVersionsWindow::showSelected()
{
    const int row = selectedRow();
    m_content = row < 0 ? VersionContent{.kind = kind()} : contentOf(m_model.versions().at(row));
    m_ui->noteLabel->setText(versionNote(m_content));
    m_ui->asTextBox->setVisible(kind() == DataKind::Tasks);
    if (row < 0)
        m_ui->look->showMessage({});
    else
        m_ui->look->show(m_content, m_data.store.inDarkMode(), m_ui->asTextBox->isChecked());
    enableButtons();
}

void EarlierVersionsWindow::showNotices()
{
    enableButtons();
    if (!showsNotices())
        return;
    QStringList lines;
    for (const NoticeLog::Notice &notice : m_data.notices.list())
        lines += QLocale().toString(notice.time.time(), QStringLiteral("HH:mm:ss  ")) + notice.text;
    m_ui->saidText->setPlainText(lines.join(QLatin1Char('\n')));
    m_ui->saidText->moveCursor(QTextCursor::End);
    m_ui->pages->setCurrentWidget(m_ui->saidPage);
}

void EarlierVersionsWindow::enableButtons()
{
    for (QPushButton *button : {m_ui->deleteButton, m_ui->restoreButton})
        button->setVisible(!showsNotices());
    m_ui->restoreTasksButton->setVisible(!showsNotices() && kind() == DataKind::Tasks);
    if (showsNotices())
        return;
    const QString noVersion = selectedRow() < 0 ? tr("Select a version first.") : QString();
    // A list on its way to or from the cloud must not change meanwhile.
    const bool isHeld = kind() == DataKind::Tasks && m_data.store.isWaitingForCloud();
    QString reason = isHeld ? tr("The cloud is being waited for.") : noVersion;
    if (reason.isEmpty())
        reason = restoringError(m_content);
    enable(m_ui->restoreButton, reason,
           isWhole(m_content.reason)
               ? tr("Put this version in place of what there is now, which is kept first")
               : tr("Put the tasks of this version into the list, which is kept first"));
    if (reason.isEmpty() && m_ui->look->selectedTasks().isEmpty())
        reason = tr("Select tasks of the version first.");
    enable(m_ui->restoreTasksButton, reason, tr("Put the selected tasks into the list, which is kept first"));
    enable(m_ui->deleteButton, noVersion, tr("Delete this version, after a question"));
}

// The list may have been edited in the main window meanwhile, and versions may have been added by that.
void EarlierVersionsWindow::refreshIfChanged()
{
    if (showsNotices())
        return;
    const bool isSame = kind() == DataKind::Tasks ? m_comparedTasks.isSharedWith(m_data.store.fullList())
                                                  : today().bytes == m_today.bytes;
    if (!isSame || versions().list() != m_model.versions())
        refresh();
}

void EarlierVersionsWindow::viewDidAppear()
{
    m_ui->versionTable->setFocus(Qt::OtherFocusReason);
}

void EarlierVersionsWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refreshIfChanged();
    ToolWindow::changeEvent(event);
}

} // namespace oblino
