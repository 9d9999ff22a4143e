#include <tools/windows/versionlook.h>

#include <controls/tableheader.h>
#include <ui/windows/taskcelldelegate.h>
#include <ui_versionlook.h>

#include <QHeaderView>

namespace oblino {

VersionLook::VersionLook(QWidget *parent)
    : QStackedWidget(parent)
    , m_ui(std::make_unique<Ui::VersionLook>())
{
    m_ui->setupUi(this);
    prepareTable();
}

VersionLook::~VersionLook() = default;

void VersionLook::prepareTable()
{
    QTableView *table = m_ui->taskLook;
    table->setHorizontalHeader(new TableHeader(table));
    table->setModel(&m_model);
    table->setItemDelegate(new TaskCellDelegate(table));
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(tableRowHeight(*this));
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    const QList<int> letters = {13, 7, 7, 26, 15, 13, 22, 12, 13, 11, 36};
    for (int column = 0; column < letters.size(); ++column)
        table->horizontalHeader()->resizeSection(column,
                                                 fontMetrics().averageCharWidth() * letters.at(column) + 24);
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &VersionLook::selectionChanged);
}

void VersionLook::show(const VersionContent &content, bool dark, bool asText)
{
    clear();
    fill(content, dark, asText);
    Q_EMIT selectionChanged();
}

void VersionLook::fill(const VersionContent &content, bool dark, bool asText)
{
    const bool isList = content.kind == DataKind::Tasks;
    const bool isBoard = content.kind == DataKind::Whiteboard;
    if (!content.error.isEmpty()) {
        showMessage(content.error);
    } else if (content.bytes.isEmpty()) {
        showMessage(isList ? tr("It holds no tasks.") : tr("It is empty."));
    } else if (isBoard && content.picture.isNull()) {
        showMessage(tr("It is not a picture that can be shown."));
    } else if (isBoard) {
        m_ui->pictureLook->setImage(content.picture);
        setCurrentWidget(m_ui->pictureLook);
    } else if (isList && !content.tasks.isEmpty() && !asText) {
        m_tasks = content.tasks;
        m_shownTasks = m_tasks;
        for (task &t : m_shownTasks)
            t.color = dark ? t.color.inverted() : t.color;
        m_model.setRows(m_shownTasks.size(),
                        [this](int row) -> const task & { return m_shownTasks.at(row); });
        m_ui->taskLook->scrollToTop();
        setCurrentWidget(m_ui->taskLook);
    } else {
        m_ui->textLook->setPlainText(QString::fromUtf8(content.bytes));
        setCurrentWidget(m_ui->textLook);
    }
}

void VersionLook::showMessage(const QString &sentence)
{
    clear();
    m_ui->messageLook->setText(sentence);
    setCurrentWidget(m_ui->messageLook);
    Q_EMIT selectionChanged();
}

void VersionLook::clear()
{
    m_model.setRows(0, {});
    m_shownTasks.clear();
    m_tasks.clear();
    m_ui->textLook->clear();
    m_ui->pictureLook->setImage({});
    m_ui->messageLook->clear();
}

QList<task> VersionLook::selectedTasks() const
{
    QModelIndexList rows = m_ui->taskLook->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QList<task> tasks;
    for (const QModelIndex &index : rows)
        tasks.append(m_tasks.at(index.row()));
    return tasks;
}

} // namespace oblino
