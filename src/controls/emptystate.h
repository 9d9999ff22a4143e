#pragma once

#include <QWidget>

class QLabel;

namespace oblino {

/// What an empty table shows instead of rows: a picture, what is so, and what to do about it. It lies over
/// the table's viewport and lets the mouse through.
class EmptyState : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyState(QWidget *viewport);

    void setText(const QString &title, const QString &advice);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showPicture();
    void enlargeTitle();

    QLabel *m_picture;
    QLabel *m_title;
    QLabel *m_advice;
};

} // namespace oblino
