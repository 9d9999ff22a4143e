#pragma once

#include <QLabel>
#include <QString>

namespace oblino {

/// A warning in red, which can be read on a light and on a dark ground. Hidden while there is none.
class WarningLabel : public QLabel
{
    Q_OBJECT

public:
    explicit WarningLabel(QWidget *parent = nullptr);

    /// @param warning  empty hides the label
    void setWarning(const QString &warning);

protected:
    void changeEvent(QEvent *event) override;

private:
    void paintReadably();
};

} // namespace oblino
