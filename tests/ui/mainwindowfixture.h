#pragma once

#include <support/store.h>
#include <support/test.h>
#include <support/widgets.h>

#include <base/notificationcenter.h>
#include <controls/noticelabel.h>
#include <files/documents.h>
#include <ui/uiutil.h>
#include <ui/windows/viewcontroller.h>

namespace oblino {

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

inline QByteArray listOf(const QList<Row> &rows)
{
    QByteArray bytes;
    for (const Row &row : rows)
        bytes += row.bytes();
    return bytes;
}

/// The main window on a list of a test's own, with a real file, shown, driven by real events.
class MainWindow : public Store
{
public:
    explicit MainWindow(const QList<Row> &rows)
        : MainWindow(listOf(rows))
    {
    }
    explicit MainWindow(const QByteArray &list = {})
        : listAtStart(list)
    {
        if (!list.isEmpty())
            setFile(list);
        window = std::make_unique<ViewController>(store, documents, utilities, notifications,
                                                  home.privateFolder());
        showActive(*window);
        QObject::connect(&appearance, &Appearance::changed, window.get(),
                         [this] { notifications.post(u"AppleInterfaceThemeChangedNotification"_s); });
    }

    [[nodiscard]] QTableView &table() const { return find<QTableView>(*window, "tblView"); }
    [[nodiscard]] QComboBox &views() const { return find<QComboBox>(*window, "viewSelection"); }
    [[nodiscard]] QLineEdit &searchField() const { return find<QLineEdit>(*window, "searchField"); }
    [[nodiscard]] QToolButton &button(const char *name) const { return find<QToolButton>(*window, name); }
    [[nodiscard]] QString status() const { return find<QLabel>(*window, "statusMessageLabel").text(); }

    /// What the window tells below the table, and what the status line says of the file.
    [[nodiscard]] QString notice() const { return find<NoticeLabel>(*window, "notice").notice(); }
    [[nodiscard]] QString saveState() const { return find<QLabel>(*window, "saveState").text(); }

    /// What stands in the file of the list.
    [[nodiscard]] QByteArray file() const { return TemporaryHome::content(home.listPath()); }
    void setFile(const QByteArray &bytes) const { TemporaryHome::write(home.listPath(), bytes); }

    /// The names in the table, from top to bottom, joined by blanks.
    [[nodiscard]] QString shown() const { return columnOf(table(), 3); }

    /// The names in the file, in its order, joined by blanks.
    [[nodiscard]] QString saved() const
    {
        QStringList names;
        for (const QByteArray &row : file().split('^'))
            names += QString::fromUtf8(row.split('|').value(1));
        return names.join(u' ').trimmed();
    }

    [[nodiscard]] QString selectedName() const
    {
        return table().selectionModel()->selectedRows(3).value(0).data().toString();
    }

    void clickRow(const QString &name) const
    {
        const auto row = static_cast<int>(shown().split(u' ').indexOf(name));
        QVERIFY2(row >= 0, qPrintable(name));
        clickCell(table(), row, 3);
        QCOMPARE(selectedName(), name);
    }

    void click(const char *name) const
    {
        QVERIFY2(button(name).isEnabled(), name);
        oblino::click(*window, name);
    }

    QByteArray listAtStart;
    Documents documents{home.documents(), home.privateFolder()};
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
    NotificationCenter notifications;
    std::unique_ptr<ViewController> window;
};

} // namespace oblino
