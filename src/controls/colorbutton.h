#pragma once

#include <base/colorwell.h>

#include <QPushButton>

#include <QPointer>

class QColorDialog;

namespace oblino {

class ColorPopup;

/// A colour well: shows its colour, and offers some others when it is pressed, the colour panel with all of
/// them as well. One panel at most is open in the program. A colour that nobody picks anew stays the very
/// numbers that were set. Its accessible name says which colour it is.
class ColorButton : public QPushButton, public ColorWell
{
    Q_OBJECT

public:
    /// What its colours are for.
    enum class Use {
        Task, ///< the ground of a text, inverted in the dark appearance
        Pen   ///< strokes on white
    };

    explicit ColorButton(QWidget *parent = nullptr);

    void setUse(Use use) { m_use = use; }

    [[nodiscard]] Color color() const override { return m_color; }
    void setColor(const Color &color) override;

    /// Hides what is offered and the colour panel, and forgets what is picked in it.
    void deactivate();

Q_SIGNALS:
    /// The user has picked a colour; color() is it.
    void picked();
    /// The colour panel shows another colour, which is not picked yet.
    void panelColorChanged();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void openPopup();
    void openPanel();
    void pick(const Color &color);

    Color m_color;
    Use m_use = Use::Task;
    QPointer<ColorPopup> m_popup;
    QColorDialog *m_panel = nullptr;
};

} // namespace oblino
