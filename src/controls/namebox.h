#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>

namespace oblino {

/// The only name that a typed text can mean: the one that is equal apart from case, else the only one that
/// begins so, else the only one that contains it. Empty where there is none, or are several.
[[nodiscard]] QString soleMatch(const QString &typed, const QStringList &names);

/// A box in which one of many names is chosen, or any other is typed. Its text changes only by what the user
/// types or chooses, never by passing through; Tab after typing takes over the sole match.
class NameBox : public QComboBox
{
    Q_OBJECT

public:
    explicit NameBox(QWidget *parent = nullptr);

    /// The names to choose from; the text stays.
    void setNames(const QStringList &names);
    /// Shows a name, be it one of the list or not.
    void setName(const QString &name);
    void showPopup() override;
    /// Whether the text is one of the names, apart from case, or none at all.
    [[nodiscard]] bool isKnown() const;

Q_SIGNALS:
    /// The user has left the box, or chosen a name.
    void nameEntered();

protected:
    void showEvent(QShowEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    [[nodiscard]] QStringList names() const;
    void passNameTo(QWidget &part);

    bool m_isTyped = false; // since the box got the focus
};

} // namespace oblino
