#include <contacts/windows/contactwindow.h>

#include <contacts/contactmodel.h>
#include <contacts/windows/contactlist.h>
#include <controls/icons.h>
#include <controls/undoaction.h>
#include <ui_contactwindow.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPushButton>

#include <algorithm>

namespace oblino {

void ContactWindow::connectCommands()
{
    for (QAction *action : findChildren<QAction *>()) {
        if (const QString icon = action->property("iconName").toString(); !icon.isEmpty())
            action->setIcon(themedIcon(icon));
    }
    m_ui->undoButton->setDefaultAction(m_ui->undoAction);
    m_ui->redoButton->setDefaultAction(m_ui->redoAction);
    connect(m_ui->addAction, &QAction::triggered, m_ui->addButton, &QPushButton::click);
    connect(m_ui->removeAction, &QAction::triggered, m_ui->removeButton, &QPushButton::click);
    connect(m_ui->editAction, &QAction::triggered, this, &ContactWindow::editContact);
    connect(m_ui->copyNumberAction, &QAction::triggered, this,
            [this] { QGuiApplication::clipboard()->setText(selectedNumbers().join(QLatin1Char('\n'))); });
    connect(m_ui->undoAction, &QAction::triggered, this, [this] { step(&QUndoStack::undo); });
    connect(m_ui->redoAction, &QAction::triggered, this, [this] { step(&QUndoStack::redo); });
    connect(m_ui->table, &ContactTable::menuRequested, this, &ContactWindow::openMenu);
    connect(m_ui->table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ContactWindow::enableCommands);
    connect(m_list, &ContactList::dataChanged, this, &ContactWindow::enableCommands);
    connect(&m_history, &QUndoStack::indexChanged, this, &ContactWindow::enableCommands);
    enableCommands();
}

void ContactWindow::addContact()
{
    m_ui->table->endEditing();
    const QModelIndex name = m_list->add();
    if (!name.isValid())
        return;
    m_ui->table->setCurrentIndex(name);
    m_ui->table->scrollTo(name);
    m_ui->table->edit(name);
}

void ContactWindow::removeContacts()
{
    m_ui->table->endEditing();
    const QModelIndexList rows = m_ui->table->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    const int first = std::min_element(rows.begin(), rows.end())->row();
    m_list->remove(rows);
    m_ui->table->selectRow(std::min(first, m_list->rowCount() - 1));
    m_ui->table->setFocus(Qt::OtherFocusReason);
}

// What is being typed is a step too. A contact that comes back takes its place in a sorted list as well.
void ContactWindow::step(void (QUndoStack::*direction)())
{
    m_ui->table->endEditing();
    const int rows = m_list->rowCount();
    (m_history.*direction)();
    if (m_list->rowCount() > rows && m_list->sortColumn() >= 0)
        m_list->sort(m_list->sortColumn(), m_list->sortOrder());
    const QModelIndex touched =
        m_list->mapFromSource(m_list->sourceModel()->index(m_history.touchedRow(), NameColumn));
    // By itself the view would heed the keys that are held, and leave others selected.
    m_ui->table->selectionModel()->setCurrentIndex(touched, QItemSelectionModel::ClearAndSelect |
                                                                QItemSelectionModel::Rows);
    m_ui->table->scrollTo(touched);
}

void ContactWindow::editContact()
{
    const QModelIndex cell = m_ui->table->currentIndex();
    m_ui->table->setFocus(Qt::ShortcutFocusReason);
    if (cell.isValid())
        m_ui->table->edit(cell);
}

QStringList ContactWindow::selectedNumbers() const
{
    QStringList numbers;
    for (const QModelIndex &cell : m_ui->table->selectionModel()->selectedRows(PhoneNoColumn))
        numbers += cell.data().toString();
    numbers.removeAll(QString());
    return numbers;
}

void ContactWindow::openMenu(const QPoint &place)
{
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("contactMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({m_ui->addAction, m_ui->editAction, m_ui->copyNumberAction});
    menu->addSeparator();
    menu->addAction(m_ui->removeAction);
    menu->addSeparator();
    menu->addActions({m_ui->undoAction, m_ui->redoAction});
    menu->popup(place);
}

void ContactWindow::enableCommands()
{
    const bool isSelected = m_ui->table->selectionModel()->hasSelection();
    const QString none = tr("No %1 are selected.").arg(m_kind.plural);
    m_ui->removeButton->setEnabled(isSelected);
    m_ui->removeButton->setToolTip(isSelected ? tr("Remove the selected %1").arg(m_kind.plural) : none);
    m_ui->removeAction->setEnabled(isSelected);
    m_ui->editAction->setEnabled(isSelected);
    m_ui->copyNumberAction->setEnabled(!selectedNumbers().isEmpty());
    showUndoStep(*m_ui->undoAction, m_history.undoText());
    showRedoStep(*m_ui->redoAction, m_history.redoText());
}

} // namespace oblino
