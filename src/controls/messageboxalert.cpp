#include <controls/messageboxalert.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace oblino {

std::optional<int> MessageBoxAlert::ask(const Question &question)
{
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(QApplication::applicationDisplayName());
    // A question without a message text is its informative text alone.
    const bool informativeOnly = question.messageText.isEmpty();
    box.setTextFormat(Qt::PlainText);
    box.setText(informativeOnly ? question.informativeText : question.messageText);
    if (!informativeOnly)
        box.setInformativeText(question.informativeText);

    QList<QAbstractButton *> buttons;
    for (int i = 0; i < question.buttons.size(); ++i) {
        QPushButton *button = box.addButton(question.buttons.at(i), QMessageBox::ActionRole);
        buttons.append(button);
        if (i == question.escapeButton) {
            box.setEscapeButton(button);
            box.setDefaultButton(button);
        }
    }
    box.exec();
    // A box that the program's end closed has no clicked button: that is no answer.
    const auto pressed = buttons.indexOf(box.clickedButton());
    return pressed < 0 ? std::nullopt : std::optional(static_cast<int>(pressed));
}

} // namespace oblino
