#pragma once

#include <QString>
#include <QValidator>

#include <functional>

class QLineEdit;

namespace oblino {

/// Guards a line edit: what would make its text one that `accepts` denies cannot be typed or pasted, and a
/// tool tip says why. Line feeds, tabs and other control characters become blanks.
class RefusingValidator : public QValidator
{
    Q_OBJECT

public:
    using Predicate = std::function<bool(QStringView)>;

    /// @param why    a sentence for the user
    /// @param field  the line edit, which becomes the owner
    RefusingValidator(Predicate accepts, const QString &why, QLineEdit *field);

    State validate(QString &input, int &position) const override;

    /// Makes blanks of the single characters that are denied, as in a text that was stored before.
    void fixup(QString &input) const override;

private:
    Predicate m_accepts;
};

} // namespace oblino
