#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class QAction;
class QMenuBar;

namespace oblino {

/// A command with the keys that give it.
struct ShortcutRow
{
    QString menu;
    QString command;
    QString keys;

    friend bool operator==(const ShortcutRow &, const ShortcutRow &) = default;
};

/// The commands of a menu bar that have shortcuts, menu by menu, with those of submenus.
[[nodiscard]] QList<ShortcutRow> shortcutRows(const QMenuBar &menuBar);

/// Lists them, and finds some by what is typed.
class ShortcutsWindow : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutsWindow(const QList<ShortcutRow> &rows, QWidget *parent = nullptr);
};

/// A tool tip with the keys of the command behind it.
[[nodiscard]] QString toolTipWithShortcut(const QString &toolTip, const QAction &action);

} // namespace oblino
