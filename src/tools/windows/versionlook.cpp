#include <tools/windows/versionlook.h>

#include <controls/tableheader.h>
#include <tools/windows/boardview.h>
#include <ui/windows/taskcelldelegate.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QTableView>

#include <algorithm>

namespace oblino {

namespace {

constexpr int rowHeight = 28; // pixels, for the usual font size

} // namespace

VersionLook::VersionLook(QWidget *parent)
    : QStackedWidget(parent)
    , m_table(new QTableView(this))
    , m_text(new QPlainTextEdit(this))
    , m_picture(new BoardView(this))
    , m_message(new QLabel(this))
{
    prepareTable();
    m_text->setObjectName(QStringLiteral("textLook"));
    m_text->setAccessibleName(tr("Text of the version"));
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_picture->setObjectName(QStringLiteral("pictureLook"));
    m_picture->setAccessibleName(tr("Picture of the version"));
    m_message->setObjectName(QStringLiteral("messageLook"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setMargin(16);
    for (QWidget *page : std::initializer_list<QWidget *>{m_table, m_text, m_picture, m_message})
        addWidget(page);
    setCurrentWidget(m_message);
}

void VersionLook::prepareTable()
{
    m_table->setObjectName(QStringLiteral("taskLook"));
    m_table->setAccessibleName(tr("Tasks of the version"));
    m_table->setHorizontalHeader(new TableHeader(m_table));
    m_table->setModel(&m_model);
    m_table->setItemDelegate(new TaskCellDelegate(m_table));
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setCornerButtonEnabled(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(std::max(rowHeight, fontMetrics().height() * 3 / 2));
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    const QFontMetrics metrics(font());
    const QList<int> letters = {13, 7, 7, 26, 15, 13, 22, 12, 13, 11, 36};
    for (int column = 0; column < letters.size(); ++column)
        m_table->horizontalHeader()->resizeSection(column,
                                                   metrics.averageCharWidth() * letters.at(column) + 24);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
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
        say(content.error);
    } else if (content.bytes.isEmpty()) {
        say(isList ? tr("It holds no tasks.") : tr("It is empty."));
    } else if (isBoard && content.picture.isNull()) {
        say(tr("It is not a picture that can be shown."));
    } else if (isBoard) {
        m_picture->setImage(content.picture);
        setCurrentWidget(m_picture);
    } else if (isList && !content.tasks.isEmpty() && !asText) {
        m_tasks = content.tasks;
        QList<task> shown = m_tasks;
        for (task &t : shown)
            t.color = dark ? t.color.inverted() : t.color;
        m_model.setRows(shown);
        m_table->scrollToTop();
        setCurrentWidget(m_table);
    } else {
        m_text->setPlainText(QString::fromUtf8(content.bytes));
        setCurrentWidget(m_text);
    }
}

void VersionLook::say(const QString &sentence)
{
    clear();
    m_message->setText(sentence);
    setCurrentWidget(m_message);
    Q_EMIT selectionChanged();
}

void VersionLook::clear()
{
    m_tasks.clear();
    m_model.setRows({});
    m_text->clear();
    m_picture->setImage({});
    m_message->clear();
}

QList<task> VersionLook::selectedTasks() const
{
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QList<task> tasks;
    for (const QModelIndex &index : rows)
        tasks.append(m_tasks.at(index.row()));
    return tasks;
}

} // namespace oblino
