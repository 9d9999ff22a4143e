#pragma once

#include <base/textview.h>

#include <QPlainTextEdit>

namespace oblino {

/// The description of a task: several lines of plain text in one colour. It refuses the characters that a
/// field of a task cannot hold, and Tab leaves it.
class DescriptionView : public QPlainTextEdit, public TextView
{
    Q_OBJECT

public:
    explicit DescriptionView(QWidget *parent = nullptr);

    [[nodiscard]] QString text() const override { return toPlainText(); }
    void setText(const QString &text) override { setPlainText(text); }
    [[nodiscard]] Color textColor() const override { return m_textColor; }
    void setTextColor(const Color &color) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    [[nodiscard]] bool refuses(const QString &text);

    Color m_textColor{0, 0, 0, 1};
};

} // namespace oblino
