#pragma once

#include <support/scriptedalert.h>
#include <support/temporaryhome.h>

#include <core/taskmanager.h>
#include <platform/appearance.h>
#include <platform/defaults.h>
#include <platform/documents.h>
#include <platform/notificationcenter.h>
#include <ui/uiutil.h>
#include <ui/viewcontroller.h>

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QToolButton>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

/// A row of the task list file; fields that do not matter to a test have fixed values.
struct Row
{
    const char *name;
    const char *date = "3/7/26";
    const char *client = "";
    int status = 0;
    bool hidden = false;
    const char *color = "1.0|1.0|1.0|1.0";
    const char *desc = "";

    [[nodiscard]] QByteArray bytes() const
    {
        return QByteArray(date) + '|' + name + '|' + desc + '|' + color + "|3/9/26|" +
               QByteArray::number(status) + "|2|" + (status == 1 ? "Closed" : "Open") + "|High|KEY-" + name +
               '|' + (hidden ? "true" : "false") + "|9|30|17|0|" + client + "|Dana^";
    }
};

/// The main window on a list of a test's own, with a real file, shown, driven by real events.
class MainWindow
{
public:
    explicit MainWindow(const QList<Row> &rows)
    {
        for (const Row &row : rows)
            listAtStart += row.bytes();
        if (!rows.isEmpty())
            TemporaryHome::write(home.listPath(), listAtStart);
        window = std::make_unique<ViewController>(store, documents, utilities, notifications,
                                                  home.privateFolder());
        window->show();
        window->activateWindow();
        (void)QTest::qWaitForWindowActive(window.get());
        QObject::connect(&appearance, &Appearance::changed, window.get(),
                         [this] { notifications.post(u"AppleInterfaceThemeChangedNotification"_s); });
    }

    [[nodiscard]] QTableView &table() const { return *window->findChild<QTableView *>(u"tblView"_s); }
    [[nodiscard]] QComboBox &views() const { return *window->findChild<QComboBox *>(u"viewSelection"_s); }
    [[nodiscard]] QLineEdit &searchField() const { return *window->findChild<QLineEdit *>(u"searchField"_s); }
    [[nodiscard]] QToolButton &button(const char *name) const
    {
        return *window->findChild<QToolButton *>(QLatin1String(name));
    }
    [[nodiscard]] QString status() const
    {
        return window->findChild<QLabel *>(u"statusMessageLabel"_s)->text();
    }

    [[nodiscard]] QString cell(int row, int column) const
    {
        return table().model()->index(row, column).data().toString();
    }

    /// Has the list read anew, as a change of the appearance and back does.
    void interfaceChange()
    {
        appearance.setInterfaceStyle(u"Dark"_s);
        appearance.setInterfaceStyle(std::nullopt);
    }

    /// The names in the table, from top to bottom, joined by blanks.
    [[nodiscard]] QString shown() const
    {
        QStringList names;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            names += cell(row, 3);
        return names.join(u' ');
    }

    /// The names in the file, in its order, joined by blanks.
    [[nodiscard]] QString saved() const
    {
        QStringList names;
        for (const QByteArray &row : TemporaryHome::content(home.listPath()).split('^')) {
            if (!row.isEmpty())
                names += QString::fromUtf8(row.split('|').value(1));
        }
        return names.join(u' ');
    }

    [[nodiscard]] QString selectedName() const
    {
        const QModelIndexList rows = table().selectionModel()->selectedRows(3);
        return rows.isEmpty() ? QString() : rows.first().data().toString();
    }

    void clickRow(const QString &name) const
    {
        const auto row = static_cast<int>(shown().split(u' ').indexOf(name));
        QVERIFY2(row >= 0, qPrintable(name));
        const QRect cell = table().visualRect(table().model()->index(row, 3));
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(selectedName(), name);
    }

    void click(const char *name) const
    {
        QVERIFY2(button(name).isEnabled(), name);
        QTest::mouseClick(&button(name), Qt::LeftButton);
    }

    void clickHeader(int column) const
    {
        QHeaderView *header = table().horizontalHeader();
        const QPoint inside(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                            header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, inside);
    }

    TemporaryHome home;
    QByteArray listAtStart;
    Defaults defaults{home.path(u"settings.ini"_s)};
    Appearance appearance;
    TaskManager store{defaults, appearance};
    Documents documents{home.documents(), home.privateFolder()};
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
    NotificationCenter notifications;
    std::unique_ptr<ViewController> window;
};

} // namespace oblino
