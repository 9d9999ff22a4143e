#pragma once

#include <base/colorwell.h>

#include <QPushButton>

class QColorDialog;

namespace oblino {

/// A colour well: shows its colour, and opens the colour panel when it is pressed. One panel at most is open
/// in the program. A colour that nobody picks anew stays the very numbers that were set.
class ColorButton : public QPushButton, public ColorWell
{
    Q_OBJECT

public:
    explicit ColorButton(QWidget *parent = nullptr);

    [[nodiscard]] Color color() const override { return m_color; }
    void setColor(const Color &color) override;

    /// Hides the colour panel and forgets what is picked in it.
    void deactivate();

Q_SIGNALS:
    /// The user has picked a colour; color() is it.
    void picked();
    /// The colour panel shows another colour, which is not picked yet.
    void panelColorChanged();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void openPanel();

    Color m_color;
    QColorDialog *m_panel = nullptr;
};

} // namespace oblino
