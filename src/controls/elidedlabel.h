#pragma once

#include <QLabel>

namespace oblino {

/// A label of one line that ends in an ellipsis where its text does not fit, and then has the whole text in
/// its tool tip.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QString shownText() const;
};

} // namespace oblino
