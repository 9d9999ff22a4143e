#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

class QAction;
class QFrame;
class QLineEdit;
class QToolButton;

namespace oblino {

class ElidedLabel;

/// A line of text in which a value is typed in any usual form, with a button (Alt+Down, F4) for choosing it
/// and a quiet text beside it that says how it is understood. What is typed is judged when the field is
/// left, on Return and by judge(); what cannot be read stays as it is, is marked, and keeps Return from the
/// window. Up and Down change the value by a step, Page Up and Page Down by a large one, the wheel only
/// where the field has the focus.
class TypedField : public QWidget
{
    Q_OBJECT

public:
    /// Takes over what stands in the field. @return whether it could be read and lies in the range
    bool judge();
    /// Gives the field the focus, with its text selected to be typed over.
    void edit();
    /// Why judge() would refuse what stands in the field: one sentence, empty where it would not.
    [[nodiscard]] QString validationError() const;
    /// Whether the field shows its value, and nothing that was typed since.
    [[nodiscard]] bool isUntouched() const;
    [[nodiscard]] bool isMarked() const { return m_isMarked; }
    [[nodiscard]] QLineEdit *lineEdit() const { return m_edit; }

Q_SIGNALS:
    /// The user went to another place, and the field was judged.
    void left();

protected:
    TypedField(const QString &icon, const QString &buttonText, QWidget *parent);

    /// The value in its normal form.
    [[nodiscard]] virtual QString normalText() const = 0;
    /// Takes over what the text means, where it is readable and in the range.
    virtual void take(const QString &text) = 0;
    /// Why the text cannot be taken over; empty where it can.
    [[nodiscard]] virtual QString errorOf(const QString &text) const = 0;
    /// How the text is understood, empty where that needs no saying.
    [[nodiscard]] virtual QString readingOf(const QString &text) const = 0;
    /// Changes the value by that many steps.
    virtual void step(int steps, bool large) = 0;
    /// Makes the inside of the popup and shows the value there; once a popup.
    virtual void fillPopup(QFrame *popup) = 0;

    /// Shows the value that was set or chosen.
    void showValue();
    void closePopup();

    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    [[nodiscard]] bool handlesKey(int key, Qt::KeyboardModifiers modifiers);
    void openPopup();
    void mark(bool marked);
    void showReading();

    QLineEdit *m_edit;
    QToolButton *m_button;
    ElidedLabel *m_reading;
    QAction *m_warning;
    QPointer<QFrame> m_popup; // while it is open
    QString m_shown;          // the text of the value
    bool m_isMarked = false;
};

} // namespace oblino
