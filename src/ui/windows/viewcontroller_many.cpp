// The commands of the main window on several tasks at once.
#include <ui/windows/viewcontroller.h>

#include <controls/colorpopup.h>
#include <controls/swatches.h>
#include <controls/theme.h>
#include <ui/uiutil.h>
#include <ui/windows/repeatwindow.h>
#include <ui/windows/tasktable.h>
#include <ui_viewcontroller.h>

#include <base/clock.h>
#include <contacts/contacts.h>
#include <contacts/contactstore.h>
#include <core/days.h>
#include <core/filedays.h>
#include <core/taskmanager.h>

#include <QClipboard>
#include <QColorDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLocale>
#include <QScreen>
#include <QSet>

#include <algorithm>

namespace oblino {

TaskPlaces ViewController::selectedPlaces() const
{
    QList<int> rows = m_ui->tblView->selectedRows();
    for (int &row : rows)
        row = storeRow(row);
    return m_store.placesOfRows(rows);
}

bool ViewController::isManySelected() const
{
    return m_ui->tblView->selectedCount() > 1;
}

void ViewController::changeMany(ChangeKind kind, const std::function<void(task &)> &change)
{
    m_store.changeTasks(kind, selectedPlaces(), change);
    changeList();
}

void ViewController::hideMany(bool hide)
{
    changeMany(hide ? ChangeKind::Hide : ChangeKind::Unhide, [hide](task &t) { t.hidden = hide; });
}

void ViewController::closeMany()
{
    m_utilities.playSound();
    changeMany(ChangeKind::Close, [](task &t) {
        if (t.status == OpenStatus)
            oblino::closeTask(t);
    });
}

void ViewController::reopenMany()
{
    changeMany(ChangeKind::Reopen, [](task &t) {
        if (t.status == ClosedStatus)
            oblino::reopenTask(t);
    });
}

// What is still there of the tasks at those places, after a question under which the list may have changed.
TaskPlaces ViewController::placesStillOf(const TaskPlaces &places, const QStringList &keys) const
{
    const QList<task> &list = m_store.fullList();
    bool areTheSame = true;
    for (size_t i = 0; i < places.size() && areTheSame; ++i)
        areTheSame = list.value(places[i]).key == keys.at(static_cast<qsizetype>(i));
    if (areTheSame)
        return places;
    const QSet<QString> wanted(keys.cbegin(), keys.cend());
    TaskPlaces found;
    for (qsizetype place = 0; place < list.size(); ++place) {
        if (wanted.contains(list.at(place).key))
            found.push_back(place);
    }
    return found;
}

void ViewController::deleteMany()
{
    const TaskPlaces places = selectedPlaces();
    QStringList keys;
    for (const task &t : tasksAt(m_store.fullList(), places))
        keys += t.key;
    const bool confirmed = m_utilities.dialogYesNo(
        tr("%1 tasks will be deleted locally as well as from the iCloud if present. Are you sure you want to "
           "delete them?")
            .arg(QLocale().toString(static_cast<qlonglong>(places.size()))),
        tr("“%1” and others").arg(m_store.getSelectedTask().name));
    if (confirmed && !std::exchange(m_deletionHasAsked, true))
        (void)m_beforeCloud();
    if (confirmed) {
        for (const QString &key : keys)
            m_store.deleteTaskToCloud(key);
        m_store.removeTasks(placesStillOf(places, keys));
    }
    changeList();
}

void ViewController::copyMany()
{
    const QString key = m_store.getSelectedTask().key;
    QStringList texts;
    for (const qsizetype place : selectedPlaces()) {
        m_store.setSelected(static_cast<qint64>(place));
        texts += m_store.shareTextOfSelected();
    }
    m_store.setSelected(key);
    QGuiApplication::clipboard()->setText(texts.join(QStringLiteral("\n\n")));
    showMessage(tr("Copied %1 tasks as text.").arg(QLocale().toString(texts.size())));
}

void ViewController::askForName(const QString &title, const FetchRequest &directory, QString task::*field)
{
    if (!showsSelection())
        return;
    ContactStore contacts(m_dataFolder);
    QStringList names =
        contacts.loadPersistentStores().error.isEmpty() ? contacts.names(directory) : QStringList();
    for (const task &t : m_store.fullList())
        names += t.*field;
    names.removeAll(QString());
    names.removeDuplicates();
    std::ranges::sort(names, [](const QString &a, const QString &b) { return a.localeAwareCompare(b) < 0; });

    auto *box = new QInputDialog(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("changeName"));
    box->setWindowTitle(title);
    box->setLabelText(tr("New name"));
    box->setComboBoxItems(names);
    box->setComboBoxEditable(true);
    box->setTextValue(m_store.getSelectedTask().*field);
    connect(box, &QInputDialog::textValueSelected, this, [this, field](const QString &name) {
        changeMany(ChangeKind::Edit, [field, name](task &t) { t.*field = name; });
    });
    box->open();
}

void ViewController::changeClient()
{
    askForName(tr("Change Client"), Clients::fetchRequest(), &task::client);
}

void ViewController::changeTeamMember()
{
    askForName(tr("Change Team Member"), TeamMembers::fetchRequest(), &task::teamMember);
}

void ViewController::moveByDays()
{
    if (!showsSelection())
        return;
    constexpr int most = 36'500; // what the file can hold is less
    auto *box = new QInputDialog(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("moveByDays"));
    box->setWindowTitle(tr("Move by Days"));
    box->setLabelText(tr("By how many days, start and due date; fewer than 0: earlier"));
    box->setInputMode(QInputDialog::IntInput);
    box->setIntRange(-most, most);
    box->setIntValue(1);
    connect(box, &QInputDialog::intValueSelected, this, [this](int days) {
        const FileDays window = fileDays(today());
        const auto fits = [&](const QDateTime &moment) {
            const QDate day = moment.date().addDays(days);
            return day >= window.first && day <= window.last;
        };
        const QList<task> moved = tasksAt(m_store.fullList(), selectedPlaces());
        if (!std::ranges::all_of(moved, [&](const task &t) { return fits(t.date) && fits(t.due); })) {
            m_utilities.dialogOK(tr("Only days from %1 to %2 can be kept. Nothing was changed.")
                                     .arg(QLocale().toString(window.first, QLocale::ShortFormat),
                                          QLocale().toString(window.last, QLocale::ShortFormat)));
            return;
        }
        changeMany(ChangeKind::Edit, [days](task &t) {
            t.date = movedByDays(t.date, days);
            t.due = movedByDays(t.due, days);
        });
    });
    box->open();
}

void ViewController::changeColor()
{
    if (!showsSelection())
        return;
    const Color present = m_store.getSelectedTask().color;
    auto *popup = new ColorPopup(taskSwatches(m_store.inDarkMode()), present, this);
    const auto change = [this](const Color &color) {
        changeMany(ChangeKind::Edit, [color](task &t) { t.color = color; });
    };
    connect(popup, &ColorPopup::picked, this, change);
    connect(popup, &ColorPopup::moreChosen, this, [this, present, change] {
        auto *dialog = new QColorDialog(screenColor(present), this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setObjectName(QStringLiteral("changeColor"));
        dialog->setOption(QColorDialog::DontUseNativeDialog);
        connect(dialog, &QColorDialog::colorSelected, this, [change](const QColor &chosen) {
            change(Color(chosen.redF(), chosen.greenF(), chosen.blueF(), chosen.alphaF()));
        });
        dialog->open();
    });
    const QRect cell = m_ui->tblView->visualRect(m_ui->tblView->currentIndex());
    popup->showAt({m_ui->tblView->viewport()->mapToGlobal(cell.topLeft()), cell.size()},
                  screen()->availableGeometry());
}

void ViewController::repeatTask()
{
    if (!showsSelection())
        return;
    const task original = m_store.getSelectedTask();
    auto *window = new RepeatWindow(original, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &QDialog::accepted, this, [this, window, original] {
        const QList<QDate> days = window->days();
        for (const QDate day : days)
            m_store.addTask(copyOnDay(original, day), ChangeKind::Repeat);
        invalidateSortOrder();
        changeList();
    });
    window->open();
}

} // namespace oblino
