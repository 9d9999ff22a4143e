#include <controls/shortcutlist.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenuBar>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

namespace oblino {

namespace {

// A text of a menu without the mark of its mnemonic and without the dots that tell of a window.
QString plainText(QString text)
{
    text.remove(QChar(u'…'));
    text.replace(QLatin1String("&&"), QLatin1String("\n"));
    text.remove(QLatin1Char('&'));
    return text.replace(QLatin1Char('\n'), QLatin1Char('&'));
}

QString keysOf(const QAction &action)
{
    QStringList keys;
    for (const QKeySequence &sequence : action.shortcuts())
        keys += sequence.toString(QKeySequence::NativeText);
    return keys.join(QLatin1String(", "));
}

void addRows(QList<ShortcutRow> &rows, const QString &menu, const QList<QAction *> &actions)
{
    for (const QAction *action : actions) {
        if (const auto *submenu = action->menu<QMenu *>())
            addRows(rows, menu, submenu->actions());
        else if (!action->shortcuts().isEmpty())
            rows.append({menu, plainText(action->text()), keysOf(*action)});
    }
}

} // namespace

QList<ShortcutRow> shortcutRows(const QMenuBar &menuBar)
{
    QList<ShortcutRow> rows;
    for (const QAction *action : menuBar.actions()) {
        if (const auto *menu = action->menu<QMenu *>())
            addRows(rows, plainText(menu->title()), menu->actions());
    }
    return rows;
}

ShortcutsWindow::ShortcutsWindow(const QList<ShortcutRow> &rows, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("ShortcutsWindow"));
    setWindowTitle(tr("Keyboard Shortcuts"));
    auto *model = new QStandardItemModel(0, 3, this);
    model->setHorizontalHeaderLabels({tr("Menu"), tr("Command"), tr("Keys")});
    for (const ShortcutRow &row : rows)
        model->appendRow(
            {new QStandardItem(row.menu), new QStandardItem(row.command), new QStandardItem(row.keys)});
    auto *found = new QSortFilterProxyModel(this);
    found->setSourceModel(model);
    found->setFilterCaseSensitivity(Qt::CaseInsensitive);
    found->setFilterKeyColumn(-1);

    auto *field = new QLineEdit;
    field->setObjectName(QStringLiteral("shortcutSearch"));
    field->setPlaceholderText(tr("Search commands and keys"));
    field->setAccessibleName(tr("Search commands and keys"));
    field->setClearButtonEnabled(true);
    connect(field, &QLineEdit::textChanged, found, &QSortFilterProxyModel::setFilterFixedString);

    auto *table = new QTableView;
    table->setObjectName(QStringLiteral("shortcutTable"));
    table->setAccessibleName(tr("Keyboard shortcuts"));
    table->setModel(found);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setHighlightSections(false);
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(8);
    layout->addWidget(field);
    layout->addWidget(table);
    layout->addWidget(buttons);
    constexpr int wide = 64; // characters
    constexpr int high = 24; // lines
    resize(wide * fontMetrics().averageCharWidth(), high * fontMetrics().height());
}

QString toolTipWithShortcut(const QString &toolTip, const QAction &action)
{
    const QString keys = keysOf(action);
    return keys.isEmpty() || toolTip.isEmpty() ? toolTip : QStringLiteral("%1 (%2)").arg(toolTip, keys);
}

} // namespace oblino
