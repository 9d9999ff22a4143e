// What of a view the table shows.
#include <ui/windows/viewcontroller.h>

#include <ui/windows/filterbar.h>
#include <ui/windows/tasktable.h>
#include <ui_viewcontroller.h>

#include <base/clock.h>
#include <core/namedfilters.h>
#include <core/taskmanager.h>
#include <core/taskviews.h>

#include <QInputDialog>
#include <QLocale>
#include <QMenu>
#include <QSet>
#include <QSignalBlocker>

#include <algorithm>

namespace oblino {

namespace {

QStringList distinct(const QList<task> &tasks, QString task::*field)
{
    QSet<QString> found;
    for (const task &t : tasks)
        found.insert(t.*field);
    found.remove(QString());
    QStringList names(found.cbegin(), found.cend());
    std::ranges::sort(names, [](const QString &a, const QString &b) { return a.localeAwareCompare(b) < 0; });
    return names;
}

} // namespace

void ViewController::connectFilter()
{
    m_ui->taskFilter->hide();
    connect(m_ui->filterAction, &QAction::toggled, this, &ViewController::showFilter);
    connect(m_ui->taskFilter, &FilterBar::dropped, this, [this] { m_ui->filterAction->setChecked(false); });
    connect(m_ui->taskFilter, &FilterBar::keepRequested, this, &ViewController::keepFilter);
    connect(m_ui->taskFilter, &FilterBar::filterChanged, this, [this] {
        const QString key = keyOfShownSelection();
        reload();
        restoreSelection(key);
    });
}

void ViewController::showFilter(bool isShown)
{
    if (isShown) {
        fillFilterNames();
    } else {
        m_ui->taskFilter->setFilter({});
        m_ui->taskFilter->setNames({}, {}); // they may be erased meanwhile
    }
    m_ui->taskFilter->setVisible(isShown);
    const QString key = keyOfShownSelection();
    reload();
    restoreSelection(key);
    (isShown ? static_cast<QWidget *>(m_ui->taskFilter) : m_ui->tblView)->setFocus(Qt::OtherFocusReason);
}

void ViewController::fillFilterNames()
{
    m_ui->taskFilter->setNames(distinct(m_store.fullList(), &task::client),
                               distinct(m_store.fullList(), &task::teamMember));
}

bool ViewController::isFiltered() const
{
    return m_ui->filterAction->isChecked() && !m_ui->taskFilter->filter().isEmpty();
}

int ViewController::storeRow(int row) const
{
    return m_filteredRows.isEmpty() ? row : m_filteredRows.value(row, -1);
}

void ViewController::applyFilter(qsizetype rowsInView)
{
    const bool isGlobal = viewIndex() >= globalAllView && viewIndex() < globalAllView + 3;
    m_model.setMarks(today(), isGlobal);
    m_filteredRows.clear();
    if (isFiltered()) {
        const TaskSieve sieve(m_ui->taskFilter->filter(), today(), QLocale().firstDayOfWeek());
        for (int row = 0; row < rowsInView; ++row) {
            if (sieve.admits(m_store.taskInView(row)))
                m_filteredRows.append(row);
        }
        m_model.setRows(m_filteredRows.size(), [this](int row) -> const task & {
            return m_store.taskInView(m_filteredRows.at(row));
        });
    } else {
        m_model.setRows(rowsInView, [this](int row) -> const task & { return m_store.taskInView(row); });
    }
    m_ui->taskFilter->setCounts(m_model.rowCount(), rowsInView);
    m_ui->tblView->setReorderHint(reorderHint());
}

void ViewController::setNamedFilters(NamedFilters &filters)
{
    m_keptFilters = &filters;
    listKeptFilters();
}

void ViewController::keepFilter()
{
    if (!m_keptFilters)
        return;
    auto *box = new QInputDialog(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("filterName"));
    box->setWindowTitle(tr("Keep Filter"));
    box->setLabelText(tr("Name of the filter"));
    connect(box, &QInputDialog::textValueSelected, this, [this](const QString &name) {
        if (name.trimmed().isEmpty())
            return showMessage(tr("A filter is kept under a name."));
        const bool isKept = m_keptFilters->keep(name, m_ui->taskFilter->filter());
        listKeptFilters();
        showMessage(isKept ? tr("Kept the filter “%1”, below the views.").arg(name.simplified())
                           : tr("At most %1 filters are kept; remove one first, in View ▸ Kept Filters.")
                                 .arg(NamedFilters::most));
    });
    box->open();
}

// Below the views, and in a menu, where they can be removed.
void ViewController::listKeptFilters()
{
    const QSignalBlocker blocker(m_ui->viewSelection);
    const auto views = static_cast<int>(viewLabels().size());
    while (m_ui->viewSelection->count() > views)
        m_ui->viewSelection->removeItem(views);
    m_filtersMenu->clear();
    m_filtersMenu->setEnabled(!m_keptFilters->all().isEmpty());
    if (m_keptFilters->all().isEmpty())
        return;
    m_ui->viewSelection->insertSeparator(views);
    auto *removing = new QMenu(tr("&Remove"), m_filtersMenu);
    for (const auto &[name, filter] : m_keptFilters->all()) {
        m_ui->viewSelection->addItem(name);
        QString inMenu = name;
        inMenu.replace(QLatin1Char('&'), QLatin1String("&&"));
        m_filtersMenu->addAction(inMenu, this, [this, name = name] { chooseKeptFilter(name); });
        removing->addAction(inMenu, this, [this, name = name] {
            m_keptFilters->remove(name);
            listKeptFilters();
        });
    }
    m_filtersMenu->addSeparator();
    m_filtersMenu->addMenu(removing);
}

void ViewController::chooseKeptFilter(const QString &name)
{
    for (const auto &[kept, filter] : m_keptFilters->all()) {
        if (kept != name)
            continue;
        m_ui->filterAction->setChecked(true);
        m_ui->taskFilter->setFilter(filter);
        reload();
        m_ui->tblView->goToRow(0);
    }
}

} // namespace oblino
