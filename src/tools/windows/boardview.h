#pragma once

#include <QImage>
#include <QWidget>

namespace oblino {

/// Shows a picture on white. One of exactly the view's pixels is shown pixel by pixel, another one as large
/// as the view allows.
class BoardView : public QWidget
{
    Q_OBJECT

public:
    explicit BoardView(QWidget *parent = nullptr);

    [[nodiscard]] QImage image() const { return m_image; }
    void setImage(const QImage &image);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QImage m_image;
};

} // namespace oblino
