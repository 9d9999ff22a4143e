#pragma once

#include <base/color.h>

#include <QFrame>
#include <QList>

class QAbstractButton;
class QGridLayout;

namespace oblino {

/// A small popup in which one of a few colours is taken with a click, or with the arrow keys and Return; Esc
/// leaves it. It closes before it says what was chosen, and is then gone.
class ColorPopup : public QFrame
{
    Q_OBJECT

public:
    /// @param current  the colour that is marked, where it is one of them
    ColorPopup(const QList<Color> &colors, const Color &current, QWidget *parent);

    /// Shows itself below the button, or above where the screen has no room.
    void showAt(const QWidget &button);
    /// Shows itself below a place on the screen, or above.
    void showAt(const QRect &place, const QRect &screen);

Q_SIGNALS:
    void picked(const oblino::Color &color);
    /// The user asks for other colours.
    void moreChosen();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addSwatch(const Color &color, bool isCurrent);
    void addButton(QAbstractButton *button, int columnSpan);
    [[nodiscard]] bool takeKey(QAbstractButton &button, int key);
    void step(qsizetype from, int key);

    QGridLayout *m_grid;
    QList<QAbstractButton *> m_buttons; // the colours row by row, then the one for more
    QAbstractButton *m_first = nullptr;
    qsizetype m_column = 0; // from which the last button was reached
};

} // namespace oblino
