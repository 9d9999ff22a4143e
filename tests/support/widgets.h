#pragma once

#include <QTest>
#include <QtWidgets>

namespace oblino {

/// Shows a window and waits until the keys go to it.
inline void showActive(QWidget &window)
{
    window.show();
    window.activateWindow();
    (void)QTest::qWaitForWindowActive(&window);
}

/// The widget of that name, which must be there.
template<typename Widget>
[[nodiscard]] Widget &find(const QWidget &parent, const char *name)
{
    auto *widget = parent.findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("no widget %s", name);
    return *widget;
}

/// Types a text into a field in place of what stands there, and goes on with that key.
inline void type(QWidget &field, const QString &text, Qt::Key next = Qt::Key_Tab)
{
    field.setFocus(Qt::TabFocusReason);
    QWidget *line = field.focusProxy() ? field.focusProxy() : &field;
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, text);
    QTest::keyClick(line, next);
}

/// Clicks a button where a check box has its mark.
inline void click(const QWidget &parent, const char *name)
{
    auto &button = find<QAbstractButton>(parent, name);
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
}

inline void clickCell(const QTableView &table, int row, int column, Qt::KeyboardModifiers keys = {})
{
    QTest::mouseClick(table.viewport(), Qt::LeftButton, keys,
                      table.visualRect(table.model()->index(row, column)).center());
}

inline void clickHeader(const QTableView &table, int column)
{
    const QHeaderView &header = *table.horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      {header.sectionViewportPosition(column) + 60, header.height() / 2});
}

/// The controls of which a screen reader could tell nothing but their kind, as "class name".
[[nodiscard]] inline QString namelessIn(const QWidget &window)
{
    QStringList nameless;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        const bool isControl = widget->focusPolicy() != Qt::NoFocus ||
                               qobject_cast<QAbstractButton *>(widget) ||
                               qobject_cast<QProgressBar *>(widget);
        const QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(widget);
        if (isControl && accessible && accessible->text(QAccessible::Name).isEmpty())
            nameless += QLatin1String(widget->metaObject()->className()) + u' ' + widget->objectName();
    }
    return nameless.join(QLatin1String(", "));
}

/// The texts of a column, from top to bottom, joined by blanks.
[[nodiscard]] inline QString columnOf(const QTableView &table, int column)
{
    QStringList texts;
    for (int row = 0; row < table.model()->rowCount(); ++row)
        texts += table.model()->index(row, column).data().toString();
    return texts.join(QLatin1Char(' '));
}

} // namespace oblino
