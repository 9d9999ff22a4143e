#pragma once

#include <QWidget>

class QLabel;

namespace oblino {

/// A quiet line below a box of names: that the name is not among them, and a way to add it.
class UnknownName : public QWidget
{
    Q_OBJECT

public:
    explicit UnknownName(QWidget *parent = nullptr);

    /// @param sentence  empty hides the line
    void setNotice(const QString &sentence);

Q_SIGNALS:
    void addRequested();

private:
    QLabel *m_label;
};

} // namespace oblino
