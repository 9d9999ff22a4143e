#pragma once

#include <QLineEdit>

namespace oblino {

/// A search field: Esc empties it, Return and the down arrow leave it for what was found.
class SearchField : public QLineEdit
{
    Q_OBJECT

public:
    explicit SearchField(QWidget *parent = nullptr);

Q_SIGNALS:
    void left();

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace oblino
